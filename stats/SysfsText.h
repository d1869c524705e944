#pragma once

#include <QByteArray>
#include <QString>

// Small helpers for the one-value text files of /proc, /sys and /etc.
namespace SysfsText {

// The file under root, or a null QByteArray when it cannot be read. Reads at most
// maxBytes, because some pseudo files never end.
QByteArray read(const QString &root, const QString &relative, qint64 maxBytes = 64 * 1024);

// First line without its line break and surrounding white space; "" when unreadable.
QString firstLine(const QString &root, const QString &relative);

// VALUE of KEY=VALUE in a shell-style assignment file (os-release, machine-info),
// with one level of single or double quotes removed; null when the key is absent.
QString assignment(const QByteArray &contents, const QString &key);

} // namespace SysfsText
