#pragma once

#include <QByteArray>
#include <QString>

#include <google/protobuf/message_lite.h>

#include <string>

// Conversions between the service's protobuf messages and the Qt types the program passes around.
namespace Velmora::Message {

inline QByteArray toPayload(const google::protobuf::MessageLite& message)
{
    QByteArray bytes(static_cast<int>(message.ByteSizeLong()), Qt::Uninitialized);
    message.SerializeToArray(bytes.data(), bytes.size());
    return bytes;
}

// Texts travel as UTF-8 in both directions.
inline QString fromUtf8(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

} // namespace Velmora::Message
