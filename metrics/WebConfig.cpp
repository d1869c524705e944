#include "WebConfig.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <crypt.h>
#include <yaml-cpp/yaml.h>

#include <cstring>
#include <set>
#include <string>

namespace {

// A problem with the file, said once and passed up as the reason it is refused.
struct Refusal {
    QString why;
};

void onlyKeys(const YAML::Node &map, const char *where, const std::set<std::string> &known)
{
    if (!map.IsMap())
        throw Refusal{QStringLiteral("%1 is not a mapping").arg(QLatin1String(where))};
    for (const auto &entry : map) {
        const std::string key = entry.first.as<std::string>();
        if (!known.count(key))
            throw Refusal{QStringLiteral("%1 has %2, which kovar does not support")
                              .arg(QLatin1String(where), QString::fromStdString(key))};
    }
}

QByteArray readPem(const QDir &base, const YAML::Node &node, const char *key, QStringList &files)
{
    const QString name = QString::fromStdString(node[key].as<std::string>());
    files << base.absoluteFilePath(name);
    QFile file(files.last());
    if (!file.open(QIODevice::ReadOnly))
        throw Refusal{QStringLiteral("%1 %2: %3").arg(QLatin1String(key), name, file.errorString())};
    const QByteArray pem = file.readAll();
    if (!pem.contains("-----BEGIN "))
        throw Refusal{QStringLiteral("%1 %2 holds no PEM").arg(QLatin1String(key), name)};
    return pem;
}

bool isBcrypt(const QByteArray &hash)
{
    return hash.size() == 60 && (hash.startsWith("$2a$") || hash.startsWith("$2b$") || hash.startsWith("$2y$"));
}

bool sameBytes(const char *a, const QByteArray &b)
{
    const std::size_t length = std::strlen(a);
    unsigned char differ = length != std::size_t(b.size());
    for (std::size_t i = 0; i < length && i < std::size_t(b.size()); ++i)
        differ |= static_cast<unsigned char>(a[i] ^ b[qsizetype(i)]);
    return differ == 0;
}

} // namespace

std::optional<WebConfig> WebConfig::load(const QString &path, QString *error)
{
    WebConfig config;
    try {
        const YAML::Node root = YAML::LoadFile(QFile::encodeName(path).toStdString());
        if (root.IsNull())
            return config;
        onlyKeys(root, "the file", {"tls_server_config", "basic_auth_users"});
        const QDir base = QFileInfo(path).absoluteDir();
        if (const YAML::Node tls = root["tls_server_config"]) {
            onlyKeys(tls, "tls_server_config",
                     {"cert_file", "key_file", "client_ca_file", "client_auth_type", "min_version"});
            if (!tls["cert_file"] || !tls["key_file"])
                throw Refusal{QStringLiteral("tls_server_config needs both cert_file and key_file")};
            config.certificatePem = readPem(base, tls, "cert_file", config.files);
            config.keyPem = readPem(base, tls, "key_file", config.files);
            const std::string auth = tls["client_auth_type"] ? tls["client_auth_type"].as<std::string>()
                                                             : "NoClientCert";
            if (auth == "RequireAndVerifyClientCert")
                config.clientAuth = ClientAuth::RequireAndVerifyClientCert;
            else if (auth != "NoClientCert")
                throw Refusal{QStringLiteral("client_auth_type %1 is not NoClientCert or RequireAndVerifyClientCert")
                                  .arg(QString::fromStdString(auth))};
            if (tls["client_ca_file"])
                config.clientCaPem = readPem(base, tls, "client_ca_file", config.files);
            else if (config.clientAuth != ClientAuth::NoClientCert)
                throw Refusal{
                    QStringLiteral("client_auth_type %1 needs a client_ca_file").arg(QString::fromStdString(auth))};
            const std::string minimum = tls["min_version"] ? tls["min_version"].as<std::string>() : "TLS12";
            const QHash<QString, QByteArray> priorities{
                {QStringLiteral("TLS10"), "NORMAL"},
                {QStringLiteral("TLS11"), "NORMAL:-VERS-TLS1.0"},
                {QStringLiteral("TLS12"), "NORMAL:-VERS-TLS1.0:-VERS-TLS1.1"},
                {QStringLiteral("TLS13"), "NORMAL:-VERS-TLS1.0:-VERS-TLS1.1:-VERS-TLS1.2"}};
            config.tlsPriorities = priorities.value(QString::fromStdString(minimum));
            if (config.tlsPriorities.isEmpty())
                throw Refusal{QStringLiteral("min_version %1 is not TLS10, TLS11, TLS12 or TLS13")
                                  .arg(QString::fromStdString(minimum))};
        }
        if (const YAML::Node users = root["basic_auth_users"]) {
            if (!users.IsMap())
                throw Refusal{QStringLiteral("basic_auth_users is not a mapping of users to hashes")};
            for (const auto &entry : users) {
                const QByteArray user = QByteArray::fromStdString(entry.first.as<std::string>());
                const QByteArray hash = QByteArray::fromStdString(entry.second.as<std::string>());
                if (!isBcrypt(hash))
                    throw Refusal{
                        QStringLiteral("the password hash of %1 is not bcrypt (htpasswd -nBC 10 \"\" makes one)")
                            .arg(QString::fromUtf8(user))};
                config.users.insert(user, hash);
            }
        }
    } catch (const Refusal &refusal) {
        *error = refusal.why;
        return std::nullopt;
    } catch (const YAML::Exception &exception) {
        *error = QString::fromStdString(exception.what());
        return std::nullopt;
    }
    return config;
}

bool WebConfig::passwordMatches(const QByteArray &user, const QByteArray &password) const
{
    if (users.isEmpty())
        return false;
    // An unknown user is checked against a hash of ours as long to compute, and refused.
    const auto found = users.constFind(user);
    const QByteArray &hash = found != users.constEnd() ? *found : users.constBegin().value();
    crypt_data work{};
    const char *computed = crypt_r(password.constData(), hash.constData(), &work);
    return computed && sameBytes(computed, hash) && found != users.constEnd();
}
