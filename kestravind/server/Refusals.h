#pragma once

#include "Code.pb.h"

#include <QByteArray>
#include <QString>

namespace Velmora::Daemon {

// A frame to send: its type and payload.
struct Answer {
    quint32 type = 0;
    QByteArray payload;
};

// The answer that turns a request down with `code`: the answer message of the request's type
// where it carries a code, with what identifies the request copied from it, so that the program
// takes it for the end of the task it asked for; else an Error message with `text`. A payload
// that does not parse leaves the identifying fields empty.
Answer refusalFor(quint32 requestType, const QByteArray& payload, Velmora::Message::Code code, const QString& text);

// The Error message, for requests whose answers carry no code and for requests nobody can answer.
Answer errorAnswer(Velmora::Message::Code code, const QString& text);

} // namespace Velmora::Daemon
