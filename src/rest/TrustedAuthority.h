#pragma once

#include <QString>

namespace REST {

// Adds the certificate authority in the PEM file at `path` to those that every HTTPS call of the
// process trusts. A build pointed at the simulated back-end trusts its local authority this way;
// certificate errors are never ignored. Returns false (and logs why) if the file gives none.
bool addTrustedAuthority(const QString& path);

} // namespace REST
