#pragma once

#include <QString>

// Who the machine says it is: the names a handheld's device object would give.
// Everything comes from files under root, so a fixture tree can stand in for a
// machine; a missing file gives "".
class DeviceIdentity {
public:
    explicit DeviceIdentity(QString root = QStringLiteral("/"));

    QString name() const;             // PRETTY_HOSTNAME, else the kernel host name
    QString uniqueIdentifier() const; // this application's id of the machine, never machine-id itself
    QString systemName() const;       // NAME of os-release
    QString systemVersion() const;    // VERSION_ID of os-release

private:
    QString osReleaseValue(const QString &key) const;

    QString _root;
};
