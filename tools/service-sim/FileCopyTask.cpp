#include "FileCopyTask.h"

#include "SteppedTask.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include <QTimer>

namespace Velmora::ServiceSim {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

QStringList toStringList(const google::protobuf::RepeatedPtrField<std::string>& items)
{
    QStringList list;
    for (const std::string& item : items)
        list << QString::fromStdString(item);
    return list;
}

FilterRules rulesOf(const Wire::MigrationFilter& filter)
{
    return FilterRules(toStringList(filter.systempaths()), toStringList(filter.paths()), toStringList(filter.extensions()));
}

// Volumes the scenario gives no tree count one file per half MiB.
constexpr quint64 AverageFileSize = 512 * 1024;

} // namespace

FileCopyTask::FileCopyTask(Machine& machine, const Timings& timings, const Wire::FileCopyRequest& request,
    ClientConnection* client, QObject* parent)
    : QObject(parent)
    , m_machine(machine)
    , m_timings(timings)
    , m_request(request)
    , m_rules(rulesOf(request.filter()))
    , m_client(client)
{
    const Machine::PartitionInfo* source = m_machine.partition(request.sourcedriveid(), request.sourcepartitionid());
    const Machine::PartitionInfo* destination = m_machine.partition(request.destinationdriveid(), request.destinationpartitionid());
    m_letter = normalizedLetter(QString::fromStdString(source->letter()));
    m_room = destination->size() - qMin(destination->size(), destination->used());

    const PartitionContent* content = m_machine.findContent(request.sourcedriveid(), request.sourcepartitionid());
    if (content && !content->files.isEmpty()) {
        content->files.forEachFile([this](const QString& path, quint64 size) {
            if (m_rules.keeps(fullPath(path))) {
                m_total += size;
                ++m_files;
            }
        });
    } else {
        m_total = source->used();
        m_files = m_total / AverageFileSize + 1;
    }
}

void FileCopyTask::start()
{
    Logger::info(QString(), QStringLiteral("Copying %1 bytes in %2 files: drive %3 partition %4 -> drive %5 partition %6")
                                .arg(m_total).arg(m_files).arg(m_request.sourcedriveid()).arg(m_request.sourcepartitionid())
                                .arg(m_request.destinationdriveid()).arg(m_request.destinationpartitionid()));
    m_steps = new SteppedTask(m_timings.copySteps, m_timings.copyStepMs,
        [this](int done, int steps) { step(done, steps); }, this);
    m_steps->start();
}

void FileCopyTask::step(int done, int steps)
{
    if (!m_client || !m_client->isOpen()) {
        Logger::warning(QString(), QStringLiteral("The client of the copy has gone; copy stopped"));
        end();
        return;
    }
    m_copied = m_total * quint64(done) / quint64(steps);
    Wire::FileCopyReport report;
    if (!m_machine.partition(m_request.destinationdriveid(), m_request.destinationpartitionid())) {
        Logger::error(QString(), QStringLiteral("Destination partition is gone; copy stopped"));
        report.set_code(Wire::FAILED);
        report.set_copiedsize(m_copied);
        m_client->send(Message::FileCopyResponse, report);
        end();
        return;
    }
    if (m_copied > m_room) {
        Logger::error(QString(), QStringLiteral("Destination partition is full"));
        report.set_code(Wire::FAILED);
        report.set_copiedsize(m_room);
        m_client->send(Message::FileCopyResponse, report);
        end();
        return;
    }
    if (done == steps) {
        finish();
        return;
    }
    report.set_code(Wire::PROGRESS);
    report.set_copiedsize(m_copied);
    report.set_copiedfiles(m_files * quint64(done) / quint64(steps));
    report.set_totalfiles(m_files);
    m_client->send(Message::FileCopyResponse, report);
}

void FileCopyTask::finish()
{
    Wire::FileCopyReport report;
    report.set_code(Wire::SUCCESS);
    report.set_copiedsize(m_total);
    report.set_copiedfiles(m_files);
    report.set_totalfiles(m_files);
    // The disks may have changed under the copy; then nothing lands.
    Machine::PartitionInfo* destination = m_machine.partition(m_request.destinationdriveid(), m_request.destinationpartitionid());
    const PartitionContent* content = m_machine.findContent(m_request.sourcedriveid(), m_request.sourcepartitionid());
    if (destination && m_machine.partition(m_request.sourcedriveid(), m_request.sourcepartitionid())) {
        destination->set_used(destination->used() + m_total);
        if (content) {
            for (const QString& file : content->faultedFiles)
                report.add_faultedfiles(file.toStdString());
            for (const QString& directory : content->faultedDirectories)
                report.add_faulteddirectories(directory.toStdString());
            m_machine.content(m_request.destinationdriveid(), m_request.destinationpartitionid()).files
                = content->files.filtered([this](const QString& path) { return m_rules.keeps(fullPath(path)); });
        }
    }
    Logger::info(QString(), QStringLiteral("Copy finished: %1 bytes, %2 faulted files").arg(m_total).arg(report.faultedfiles_size()));
    m_client->send(Message::FileCopyResponse, report);
    end();
}

void FileCopyTask::cancel(ClientConnection* client)
{
    Logger::info(QString(), QStringLiteral("Copy canceled after %1 bytes").arg(m_copied));
    Wire::FileCopyReport report;
    report.set_code(Wire::CANCELED);
    report.set_copiedsize(m_copied);
    QPointer<ClientConnection> target(client);
    // The running block is finished before the copy stops.
    QTimer::singleShot(m_timings.copyStepMs, client, [target, report] {
        if (target && target->isOpen())
            target->send(Message::FileCopyResponse, report);
    });
    end();
}

void FileCopyTask::end()
{
    if (m_steps)
        m_steps->stop();
    deleteLater();
}

} // namespace Velmora::ServiceSim
