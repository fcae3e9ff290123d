// Cost of cutting frames out of one read of the service pipe, against memcpy of the same bytes.
// Arguments: payload bytes, frames per read, log level (2 = Info, the Debug lines are skipped;
// 1 = Debug, every frame writes its two lines to the log file).

#include "BenchmarkMain.h"
#include "communication/NamedPipeClient.h"
#include "logger/Logger.h"
#include "message/Message.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

using Velmora::Communication::NamedPipeClient;
using Velmora::Message::Message;

namespace {

QByteArray burst(int payloadSize, int frames)
{
    Message message;
    message.type = Message::Smart;
    message.length = static_cast<quint32>(payloadSize);
    message.payload = QByteArray(payloadSize, 'p');
    const QByteArray one = message.serialize();
    QByteArray all;
    all.reserve(one.size() * frames);
    for (int i = 0; i < frames; ++i)
        all.append(one);
    return all;
}

void BM_ReceiveFrames(benchmark::State& state)
{
    const int payloadSize = static_cast<int>(state.range(0));
    const int frames = static_cast<int>(state.range(1));
    Velmora::Logger::initialize(static_cast<int>(state.range(2)));

    const QByteArray bytes = burst(payloadSize, frames);
    NamedPipeClient client;
    qint64 delivered = 0;
    QObject::connect(&client, &NamedPipeClient::messageReceived,
        [&delivered](Message::MessageType, const QByteArray& payload) { delivered += payload.size(); });

    for (auto _ : state)
        client.receiveBytes(bytes);

    if (delivered != static_cast<qint64>(payloadSize) * frames * state.iterations())
        state.SkipWithError("frames lost");
    state.SetItemsProcessed(state.iterations() * frames);
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void BM_Memcpy(benchmark::State& state)
{
    const QByteArray bytes = burst(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    std::vector<char> target(static_cast<size_t>(bytes.size()));
    for (auto _ : state) {
        std::memcpy(target.data(), bytes.constData(), target.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

} // namespace

BENCHMARK(BM_ReceiveFrames)
    ->ArgNames({"payload", "frames", "level"})
    ->Args({16, 1000, 2})->Args({16, 10000, 2})->Args({16, 100000, 2})
    ->Args({4096, 1000, 2})->Args({4096, 10000, 2})
    ->Args({1 << 20, 16, 2})->Args({1 << 20, 64, 2})
    ->Args({16, 1000, 1})->Args({16, 10000, 1})
    ->Args({4096, 1000, 1})
    ->Args({1 << 20, 16, 1})
    ->Unit(benchmark::kMicrosecond);

BENCHMARK(BM_Memcpy)
    ->ArgNames({"payload", "frames"})
    ->Args({16, 100000})->Args({4096, 10000})->Args({1 << 20, 64})
    ->Unit(benchmark::kMicrosecond);

KESTRAVIN_BENCHMARK_MAIN()
