#include "FittedBytes.h"

#include "Formatting.h"
#include "StringPrivate.h"

namespace FittedBytes {

QString text(double bytes, int decmal, int width)
{
    QString figure = Formatting::byteToKiloMegaGigaWithByte(bytes, decmal, false);
    if (figure.size() > width) {
        struct Step {
            const char *unit;
            const char *next;
            double divisor;
        };
        static const Step ladder[] = {{"Byte", "KB", 1024.0}, {"KB", "MB", 1048576.0}, {"MB", "GB", 1073741824.0}};
        for (const Step &step : ladder) {
            if (!figure.endsWith(QLatin1String(step.unit)))
                continue;
            const QString number = Formatting::print("%.*f", decmal >= 1 && decmal <= 3 ? decmal : 0,
                                                     bytes / step.divisor);
            const QString stepped = StringPrivate::stringByCommifyWithString(number, QString::fromLatin1(step.next));
            if (stepped.size() <= width)
                figure = stepped;
            break;
        }
    }
    return figure.rightJustified(width, QLatin1Char(' '));
}

} // namespace FittedBytes
