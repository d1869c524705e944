// The ad server's banner image.
#include "BannerResponse.h"
#include "FuzzApp.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    GADRequestError error;
    const QImage image = BannerResponse::decodeImage(bytes, 4096, QSize(640, 100), &error);
    if (!image.isNull())
        FUZZ_CHECK(image.width() >= 1 && image.width() <= 640 && image.height() >= 1 && image.height() <= 100);
    else
        FUZZ_CHECK(!error.localizedDescription.isEmpty());
    return 0;
}
