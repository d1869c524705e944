#include "DeviceIdentity.h"

#include "SysfsText.h"

#include <QMessageAuthenticationCode>

#include <algorithm>

DeviceIdentity::DeviceIdentity(QString root)
    : _root(std::move(root))
{
}

QString DeviceIdentity::name() const
{
    const QString pretty = SysfsText::assignment(SysfsText::read(_root, QStringLiteral("etc/machine-info")),
                                                 QStringLiteral("PRETTY_HOSTNAME"));
    if (!pretty.trimmed().isEmpty())
        return pretty;
    // The kernel's own copy of the host name, which is what gethostname() returns.
    return SysfsText::firstLine(_root, QStringLiteral("proc/sys/kernel/hostname"));
}

QString DeviceIdentity::uniqueIdentifier() const
{
    // The machine id itself is confidential (machine-id(5)): anyone who sees it can
    // follow the machine across every program that shows it. What is shown is an
    // id of this machine for this application only, HMAC-SHA256 keyed with the
    // machine id over the application's own id, marked as a random (v4) UUID, as
    // systemd's sd_id128_get_machine_app_specific() derives it.
    static const QByteArray applicationId = QByteArray::fromHex("a280b5a790644db9879c23ddd259c62e");
    const QString text = SysfsText::firstLine(_root, QStringLiteral("etc/machine-id"));
    const auto isHexDigit = [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c.toLower() >= u'a' && c.toLower() <= u'f');
    };
    if (text.size() != 32 || !std::all_of(text.begin(), text.end(), isHexDigit))
        return QStringLiteral("");
    QByteArray id = QMessageAuthenticationCode::hash(applicationId, QByteArray::fromHex(text.toLatin1()),
                                                     QCryptographicHash::Sha256)
                        .left(16);
    id[6] = char((id.at(6) & 0x0F) | 0x40);
    id[8] = char((id.at(8) & 0x3F) | 0x80);
    return QString::fromLatin1(id.toHex());
}

QString DeviceIdentity::systemName() const
{
    return osReleaseValue(QStringLiteral("NAME"));
}

QString DeviceIdentity::systemVersion() const
{
    return osReleaseValue(QStringLiteral("VERSION_ID"));
}

QString DeviceIdentity::osReleaseValue(const QString &key) const
{
    // /etc/os-release wins; /usr/lib/os-release is the vendor's fallback copy.
    QByteArray contents = SysfsText::read(_root, QStringLiteral("etc/os-release"));
    if (contents.isNull())
        contents = SysfsText::read(_root, QStringLiteral("usr/lib/os-release"));
    const QString value = SysfsText::assignment(contents, key);
    return value.isNull() ? QStringLiteral("") : value;
}
