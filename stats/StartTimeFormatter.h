#pragma once

#include <QByteArray>
#include <QString>

// Date-and-time text in the medium date and medium time styles. Opening a
// formatter is far dearer than using it, so one is opened and kept.
class StartTimeFormatter {
public:
    // An empty locale or zone means the process's current one (LANG/LC_*, TZ).
    explicit StartTimeFormatter(const QByteArray &locale = {}, const QString &timeZone = {});
    ~StartTimeFormatter();
    StartTimeFormatter(const StartTimeFormatter &) = delete;
    StartTimeFormatter &operator=(const StartTimeFormatter &) = delete;

    bool isValid() const { return _format != nullptr; }
    // Empty when the formatter could not be opened, and for a moment outside the
    // years 1 to 9999 (the calendar would clamp it to a date that never was).
    QString format(qint64 secondsSinceEpoch) const;

private:
    void *_format = nullptr; // UDateFormat
};
