#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

// Prometheus's web configuration file (--web-config), the part operators use: TLS from
// tls_server_config (cert_file, key_file, client_ca_file, client_auth_type, min_version)
// and bcrypt-hashed users from basic_auth_users. Paths are taken relative to the file.
class WebConfig {
public:
    enum class ClientAuth { NoClientCert, RequireAndVerifyClientCert };

    // The file read and checked; nullopt with why in error when it does not parse, names a
    // file that cannot be read or holds a hash that is not bcrypt.
    static std::optional<WebConfig> load(const QString &path, QString *error);

    bool hasTls() const { return !certificatePem.isEmpty(); }
    bool hasUsers() const { return !users.isEmpty(); }
    // The same work whether or not the user exists, so that timing tells nothing.
    bool passwordMatches(const QByteArray &user, const QByteArray &password) const;

    QByteArray certificatePem;
    QByteArray keyPem;
    QByteArray clientCaPem;
    ClientAuth clientAuth = ClientAuth::NoClientCert;
    QByteArray tlsPriorities; // GnuTLS's, from min_version
    QHash<QByteArray, QByteArray> users;
    QStringList files; // the certificate, key and CA files it names, absolute
};
