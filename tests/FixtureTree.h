#pragma once

#include "InfoDictionary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <clocale>
#include <initializer_list>

// Fixture trees copied from real machines live under KOVAR_FIXTURES, shared by every
// test; tests that change files work on a copy in a temporary directory. The tables of
// cases live beside the tests that read them, in KOVAR_TABLES.
namespace FixtureTree {

inline QString path(const QString &name)
{
    return QStringLiteral(KOVAR_FIXTURES "/") + name;
}

inline QString tablePath(const char *table)
{
    return QStringLiteral(KOVAR_TABLES "/") + QLatin1String(table);
}

inline bool writeFile(const QString &path, const QByteArray &data)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        && file.write(data) == data.size();
}

// /proc/stat under root with only the line of all CPUs, in ticks, and the boot time: the
// machine whose load a test sets between two samples.
inline bool writeCpuTicks(const QString &root, quint64 user, quint64 system, quint64 idle)
{
    return writeFile(
        root + QStringLiteral("/proc/stat"),
        QStringLiteral("cpu  %1 0 %2 %3 0 0 0 0 0 0\nbtime 1700000000\n").arg(user).arg(system).arg(idle).toUtf8());
}

inline bool copy(const QString &from, const QString &to)
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

// Rows of a tab-separated table file: the first field names the row, the others fill
// the QString columns; "#" starts a comment line, "\t" and "\n" stand for tab and line break.
// With locales, every row is added once per locale, with a first column "locale" and the
// locale's name after the row's; the test sets it with useLocale().
inline void addRows(const char *table, std::initializer_list<const char *> columns,
                    std::initializer_list<const char *> locales = {})
{
    if (locales.size() > 0)
        QTest::addColumn<QString>("locale");
    for (const char *column : columns)
        QTest::addColumn<QString>(column);
    QFile file(tablePath(table));
    QVERIFY2(file.open(QIODevice::ReadOnly), table);
    const QString text = QString::fromUtf8(file.readAll());
    QList<const char *> inLocales(locales.begin(), locales.end());
    if (inLocales.isEmpty())
        inLocales.append(nullptr);
    for (const char *locale : inLocales) {
        for (const QString &line : text.split(u'\n', Qt::SkipEmptyParts)) {
            const QStringList fields = line.split(u'\t');
            if (line.startsWith(u'#'))
                continue;
            QVERIFY2(fields.size() == qsizetype(columns.size()) + 1, qPrintable(line));
            const QString name = locale ? QStringLiteral("%1 [%2]").arg(fields.first(), QLatin1String(locale))
                                        : fields.first();
            QTestData &row = QTest::newRow(qPrintable(name));
            if (locale)
                row << QString::fromLatin1(locale);
            for (qsizetype i = 1; i < fields.size(); ++i)
                row << QString(fields.at(i))
                           .replace(QLatin1String("\\t"), QLatin1String("\t"))
                           .replace(QLatin1String("\\n"), QLatin1String("\n"));
        }
    }
}

// The locales in which the figures must read the same: their formats are fixed and English,
// whatever LC_NUMERIC says (a comma before the decimals, a narrow space between thousands).
#define KOVAR_FIGURE_LOCALES                                                                                           \
    {                                                                                                                  \
        "C", "de_DE.UTF-8", "fr_FR.UTF-8"                                                                              \
    }

// Sets the process's locale for one row (the C library's and the one Qt reads at start).
inline bool useLocale(const QString &name)
{
    return std::setlocale(LC_ALL, name.toLatin1().constData()) != nullptr;
}

// The rows that expected names ("Key=Value|Key=Value"), as info shows them; keys are
// unique across the sections of one dictionary.
inline QString rowsLike(const InfoDictionary &info, const QString &expected)
{
    QStringList shown;
    for (const QString &want : expected.split(u'|', Qt::SkipEmptyParts)) {
        const QString key = want.section(u'=', 0, 0);
        QString value = QStringLiteral("<missing>");
        for (const QString &section : info.sectionNames()) {
            for (const InfoRow &row : info.section(section))
                value = row.key == key ? row.value : value;
        }
        shown.append(key + u'=' + value);
    }
    return shown.join(u'|');
}

// The lines of a table file whose first field is tag, without that field.
inline QStringList tableLines(const char *table, const QString &tag)
{
    QFile file(tablePath(table));
    QStringList lines;
    if (file.open(QIODevice::ReadOnly)) {
        for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n'))
            if (line.startsWith(tag + u'\t'))
                lines.append(line.section(u'\t', 1));
    }
    return lines;
}

// The dictionary as "Section\tKey\tValue" lines in display order; a null value shows as "<null>".
inline QStringList tableLines(const InfoDictionary &info)
{
    QStringList lines;
    for (const QString &section : info.sectionNames()) {
        for (const InfoRow &row : info.section(section))
            lines.append(section + u'\t' + row.key + u'\t'
                         + (row.value.isNull() ? QStringLiteral("<null>") : row.value));
    }
    return lines;
}

} // namespace FixtureTree
