#include "DeviceIdentity.h"

#include "SysfsText.h"

DeviceIdentity::DeviceIdentity(QString root)
    : m_root(std::move(root))
{
}

QString DeviceIdentity::name() const
{
    const QString pretty = SysfsText::assignment(SysfsText::read(m_root, QStringLiteral("etc/machine-info")),
                                                 QStringLiteral("PRETTY_HOSTNAME"));
    if (!pretty.trimmed().isEmpty())
        return pretty;
    // The kernel's own copy of the host name, which is what gethostname() returns.
    return SysfsText::firstLine(m_root, QStringLiteral("proc/sys/kernel/hostname"));
}

QString DeviceIdentity::uniqueIdentifier() const
{
    return SysfsText::firstLine(m_root, QStringLiteral("etc/machine-id"));
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
    QByteArray contents = SysfsText::read(m_root, QStringLiteral("etc/os-release"));
    if (contents.isNull())
        contents = SysfsText::read(m_root, QStringLiteral("usr/lib/os-release"));
    const QString value = SysfsText::assignment(contents, key);
    return value.isNull() ? QStringLiteral("") : value;
}
