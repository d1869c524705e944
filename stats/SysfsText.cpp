#include "SysfsText.h"

#include <QDir>
#include <QFile>

namespace SysfsText {

QByteArray read(const QString &root, const QString &relative, qint64 maxBytes)
{
    QFile file(QDir(root).filePath(relative));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray data = file.read(maxBytes);
    if (data.isNull())
        data = QByteArray("");
    return data;
}

QString firstLine(const QString &root, const QString &relative)
{
    const QByteArray data = read(root, relative);
    const qsizetype end = data.indexOf('\n');
    return QString::fromUtf8(end < 0 ? data : data.left(end)).trimmed();
}

QString assignment(const QByteArray &contents, const QString &key)
{
    const QList<QByteArray> lines = contents.split('\n');
    const QByteArray prefix = key.toUtf8() + '=';
    for (const QByteArray &rawLine : lines) {
        const QByteArray line = rawLine.trimmed();
        if (!line.startsWith(prefix))
            continue;
        QByteArray value = line.mid(prefix.size());
        if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
            value = value.mid(1, value.size() - 2);
        }
        QByteArray unescaped;
        for (qsizetype i = 0; i < value.size(); ++i) {
            if (value.at(i) == '\\' && i + 1 < value.size())
                ++i;
            unescaped.append(value.at(i));
        }
        return QString::fromUtf8(unescaped);
    }
    return {};
}

} // namespace SysfsText
