#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

// Fixture trees copied from real machines live under KOVAR_FIXTURES; tests that
// change files work on a copy in a temporary directory.
class FixtureTree {
public:
    static QString path(const char *name) { return QStringLiteral(KOVAR_FIXTURES "/") + QLatin1String(name); }

    static bool writeFile(const QString &path, const QByteArray &data)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size();
    }

    static bool copy(const QString &from, const QString &to)
    {
        if (!QDir().mkpath(to))
            return false;
        for (const QFileInfo &entry : QDir(from).entryInfoList(QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot)) {
            const QString target = to + QLatin1Char('/') + entry.fileName();
            if (entry.isDir() ? !copy(entry.filePath(), target) : !QFile::copy(entry.filePath(), target))
                return false;
        }
        return true;
    }
};
