// A console program around the WIC decoding core, cross-compiled with MinGW and run under
// wine by check_windows.sh. For each file named on the command line it prints one line:
//   <index> ok <width> <height> <b> <g> <r> <a>      (the first pixel, straight alpha)
//   <index> fail <step> 0x<hresult>
// and for a decoded file with a colour context a second one:
//   <index> colour <icc bytes> <"acsp" at its place: 1 or 0> <EXIF colour space>
// Each file is decoded twice, so that a second decode after a failure is exercised too.
// Then the first file is decoded on two threads of their own at once, as the program's
// workers decode ("threads ok <width> <height>" when both succeed).
#include "images/WicDecode.h"

#include <cstdio>
#include <thread>

int wmain(int argc, wchar_t *argv[])
{
    for (int i = 1; i < argc; ++i) {
        for (int round = 0; round < 2; ++round) {
            WicImage image;
            const WicResult result = wicDecodeFile(argv[i], &image);
            if (round == 0 && result.ok()) {
                std::printf("%d ok %d %d %u %u %u %u\n", i, image.width, image.height, image.bgra[0],
                            image.bgra[1], image.bgra[2], image.bgra[3]);
                const bool signed_ = image.icc.size() > 40 && image.icc[36] == 'a' && image.icc[37] == 'c' &&
                                     image.icc[38] == 's' && image.icc[39] == 'p';
                if (!image.icc.empty() || image.exifColorSpace != 0)
                    std::printf("%d colour %u %d %u\n", i, unsigned(image.icc.size()), signed_ ? 1 : 0,
                                image.exifColorSpace);
            } else if (round == 0)
                std::printf("%d fail %s 0x%08x\n", i, wicStepName(result.failedStep),
                            unsigned(result.hresult));
        }
    }
    if (argc > 1) {
        WicImage first, second;
        WicResult firstResult, secondResult;
        std::thread a([&] { firstResult = wicDecodeFile(argv[1], &first); });
        std::thread b([&] { secondResult = wicDecodeFile(argv[1], &second); });
        a.join();
        b.join();
        if (firstResult.ok() && secondResult.ok() && first.bgra == second.bgra)
            std::printf("threads ok %d %d\n", first.width, first.height);
        else
            std::printf("threads fail %s %s\n", wicStepName(firstResult.failedStep),
                        wicStepName(secondResult.failedStep));
    }
    std::fflush(stdout);
    return 0;
}
