// A scraper's Accept header (the first line) and a label value from the device (the rest),
// as the metrics endpoint negotiates and writes them.
#include "FuzzApp.h"
#include "MetricsExposition.h"

#include <cstddef>
#include <cstdint>

namespace {

// The value of name="..." in line, escapes undone; null when the line has no such label.
QByteArray labelValue(const QByteArray &line, const QByteArray &name)
{
    const qsizetype start = line.indexOf(',' + name + "=\"");
    if (start < 0)
        return {};
    QByteArray value("");
    for (qsizetype i = start + name.size() + 3; i < line.size(); ++i) {
        if (line[i] == '"')
            return value;
        if (line[i] == '\\' && i + 1 < line.size())
            value += line[++i] == 'n' ? '\n' : line[i];
        else
            value += line[i];
    }
    return {};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype newline = input.indexOf('\n');
    const MetricsExposition::Format format = MetricsExposition::negotiate(
        input.left(newline < 0 ? input.size() : newline));
    const QString value = QString::fromUtf8(newline < 0 ? QByteArray() : input.mid(newline + 1));

    MetricsExposition::Sample sample;
    sample.deviceInfo = {{"device", QStringLiteral("d")}, {"name", value}};
    const QByteArray text = MetricsExposition::render(sample, format);
    sample.deviceInfo = {{"device", QStringLiteral("d")}, {"name", QString()}};
    // Escaping keeps every sample on its line, and the value comes back whole.
    FUZZ_CHECK(text.count('\n') == MetricsExposition::render(sample, format).count('\n'));
    for (const QByteArray &line : text.split('\n')) {
        if (line.startsWith("kovar_device_info{"))
            FUZZ_CHECK(labelValue(line, "name") == value.toUtf8());
    }
    return 0;
}
