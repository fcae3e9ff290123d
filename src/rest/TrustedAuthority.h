#pragma once

#include <QString>

namespace REST {

// Adds the certificate authority in the PEM file at `path` to those that every HTTPS call of the
// process trusts. A build pointed at the simulated back-end trusts its local authority this way;
// certificate errors are never ignored. Returns false (and logs why) if the file gives none.
bool addTrustedAuthority(const QString& path);

// The same, but only when the first HTTPS call is about to be made or trustPendingAuthorities()
// runs, whichever comes first: reading a certificate loads the TLS library, and that cost does not
// belong in the program's start.
void trustAuthorityBeforeFirstCall(const QString& path);

// Adds the authorities remembered by trustAuthorityBeforeFirstCall() that are not trusted yet.
// Every sender of HTTPS calls runs it before it makes one.
void trustPendingAuthorities();

// Loads the TLS library and trusts the pending authorities, so that the first HTTPS call does not
// wait for either.
void prepareTls();

} // namespace REST
