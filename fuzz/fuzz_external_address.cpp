// The external-address endpoint's body.
#include "FuzzApp.h"
#include "NetworkInfoReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString shown = NetworkInfoReader::externalAddressFromBody(body);
    // The body itself, or a reason; never a text that the server did not send.
    FUZZ_CHECK(shown.toLatin1() == body || shown == QStringLiteral("The response is not ASCII text."));
    return 0;
}
