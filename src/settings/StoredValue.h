#pragma once

#include <QString>

namespace Velmora::Settings {

// Typed reads from the store for the settings the user edits. The settings file is plain text that
// people edit by hand: a value that is not of the expected type reads as the default, as if it
// were missing, instead of whatever QVariant would make of it ("yes" is not true, "abc" is not 0).
// Nothing is written back, so the file keeps what it holds until the user changes the setting.
bool storedBool(const QString& group, const QString& key, bool defaultValue);
int storedInt(const QString& group, const QString& key, int defaultValue);
QString storedString(const QString& group, const QString& key, const QString& defaultValue);

} // namespace Velmora::Settings
