#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cctype>
#include <cstddef>
#include <cstdint>

// A file tree made from one fuzz input, for the readers that take a root directory.
// The input is a list of records, each "\x1e" + relative path + "\n" + contents, as
// the seeds made from the fixture trees are. Only paths under the target's own
// prefixes are written, and only plain names (no "..", no empty part), so a mutated
// path can never leave the tree. Each input starts from an empty tree, so a crash
// reproduces from its input alone.
class FuzzTree {
public:
    explicit FuzzTree(QByteArrayList allowedPrefixes)
        : _allowed(std::move(allowedPrefixes))
    {
    }

    QString root() const { return _dir.path(); }

    // Writes the tree of one input; false when nothing usable was in it.
    bool load(const std::uint8_t *data, std::size_t size)
    {
        clear();
        const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
        int written = 0;
        for (const QByteArray &record : input.split('\x1e')) {
            const qsizetype newline = record.indexOf('\n');
            if (newline <= 0 || written >= 64)
                continue;
            const QByteArray path = record.left(newline);
            if (!isAllowed(path))
                continue;
            const QString file = _dir.filePath(QString::fromLatin1(path));
            QDir().mkpath(QFileInfo(file).path());
            QFile out(file);
            if (out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
                out.write(record.mid(newline + 1));
                ++written;
            }
        }
        return written > 0;
    }

    // Writes the whole input as one file.
    void loadOne(const QByteArray &path, const std::uint8_t *data, std::size_t size)
    {
        clear();
        const QString file = _dir.filePath(QString::fromLatin1(path));
        QDir().mkpath(QFileInfo(file).path());
        QFile out(file);
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            out.write(reinterpret_cast<const char *>(data), qint64(size));
    }

private:
    bool isAllowed(const QByteArray &path) const
    {
        if (path.size() > 200)
            return false;
        for (const QByteArray &part : path.split('/')) {
            if (part.isEmpty() || part == "." || part == "..")
                return false;
            for (const char c : part) {
                if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-' || c == '.' || c == ':'))
                    return false;
            }
        }
        for (const QByteArray &prefix : _allowed) {
            if (path.startsWith(prefix))
                return true;
        }
        return false;
    }

    void clear()
    {
        for (const QString &entry :
             QDir(_dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)) {
            const QString path = _dir.filePath(entry);
            if (QFileInfo(path).isDir())
                QDir(path).removeRecursively();
            else
                QFile::remove(path);
        }
    }

    QTemporaryDir _dir;
    QByteArrayList _allowed;
};
