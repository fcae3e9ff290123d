#pragma once

#include <QString>

namespace REST {

class RestRequest;

// Stamps every request the client sends. The base class adds HTTP basic authorization with the
// credential as given (already encoded by the caller).
class Authenticator
{
public:
    explicit Authenticator(const QString& credential);
    virtual ~Authenticator();
    virtual void authenticate(RestRequest& request);

protected:
    QString m_credential;
};

} // namespace REST
