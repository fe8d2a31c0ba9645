// Reads and compares a card of real size beside exiftool on the same folder, and prints both times. No Google
// Benchmark: exiftool takes its time. Files have the heads of an image that ImageMagick and exiftool made,
// and sparse tails.
//   bench_card [PAIRS [FOLDER]]
#include "analysis/ExifReader.h"
#include "analysis/RunAnalysis.h"
#include "platform/Exiv2Metadata.h"
#include "platform/ThreadWorkQueues.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/resource.h>
#include <vector>

using namespace zenka;
namespace fs = std::filesystem;

namespace {

constexpr char date[] = "2026:08:12 18:00:00";
constexpr std::size_t head = std::size_t{48} << 10;

bool run(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

std::string headOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    bytes.resize(std::min(bytes.size(), head));
    return bytes;
}

void write(const fs::path& file, std::string bytes, const std::string& at, std::uintmax_t size) {
    for (std::size_t found = bytes.find(date); found != bytes.npos; found = bytes.find(date, found + 1))
        bytes.replace(found, at.size(), at);
    std::ofstream(file, std::ios::binary) << bytes;
    fs::resize_file(file, size);
}

template <typename Function>
double seconds(Function function) {
    const auto begin = std::chrono::steady_clock::now();
    function();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

long residentKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

int main(int count, char** words) {
    const int pairs = count > 1 ? std::atoi(words[1]) : 3000;
    const fs::path folder = count > 2 ? words[2] : "/tmp/zenka-bench-card";
    fs::remove_all(folder);
    fs::create_directories(folder / "DCIM");
    const std::string quoted = "'" + folder.string() + "/";
    if (!run("convert -size 1800x1200 plasma:red-blue -quality 95 " + quoted + "a.jpg' && convert " + quoted +
             "a.jpg' " + quoted + "a.tif' && convert " + quoted + "a.jpg' -resize 160x120 " + quoted +
             "thumb.jpg' && exiftool -q -overwrite_original -Make=SONY -Model=ILCE-7RM5 '-AllDates=" + date +
             "' -SubSecTimeOriginal=000 -ISO=100 -FNumber=8 -ExposureTime=1/500 -LensModel='FE 200-600mm' "
             "-GPSLatitude=41.65 -GPSLatitudeRef=N -XMP:Rating=3 -IPTC:City=Zaragoza "
             "'-ThumbnailImage<=" +
             folder.string() + "/thumb.jpg' " + quoted + "a.jpg' " + quoted + "a.tif'")) {
        std::puts("no ImageMagick or no exiftool");
        return 1;
    }
    const std::string jpeg = headOf(folder / "a.jpg");
    const std::string raw = headOf(folder / "a.tif");
    std::vector<script::Capture> captures;
    for (int i = 0; i < pairs; ++i) {
        const std::string at =
            absl::StrFormat("2026:08:12 %02d:%02d:%02d", 18 + i / 3600, i / 60 % 60, i % 60);
        const fs::path stem = folder / "DCIM" / absl::StrFormat("DSC%05d", i);
        write(stem.string() + ".JPG", jpeg, at, 9'000'000);
        write(stem.string() + ".ARW", raw, at, 62'000'000);
        captures.push_back({.offsetSec = static_cast<double>(i),
                            .camera = "CAM1",
                            .shutterSec = 0.002,
                            .aperture = 8,
                            .iso = 100});
    }
    for (const char* name : {"a.jpg", "a.tif", "thumb.jpg"})
        fs::remove(folder / name);

    platform::Exiv2Metadata metadata;
    platform::ThreadWorkQueues queues;
    std::vector<double> ours;
    std::vector<double> theirs;
    int matched = 0;
    const long before = residentKb();
    for (int round = 0; round < 4; ++round) {
        const double once = seconds([&] {
            analysis::ExifReader reader(metadata, queues, absl::UTCTimeZone());
            auto frames = reader.read(folder);
            matched = analysis::RunAnalysis::compare(captures, std::move(frames), {}).matched;
        });
        if (round > 0) // the first fills the cache of the disk
            ours.push_back(once);
    }
    const long after = residentKb();
    for (int round = 0; round < 3; ++round)
        theirs.push_back(
            seconds([&] { run("exiftool -r -fast2 -csv -q " + quoted + "' > /dev/null 2>&1"); }));
    std::printf("%d pairs, %d of %d matched\n", pairs, matched, pairs);
    std::printf("read and compared: median %.2f s; exiftool -r -fast2 -csv: median %.2f s; ratio %.1f\n",
                median(ours), median(theirs), median(theirs) / median(ours));
    std::printf("resident memory: %ld kB before, %ld kB after\n", before, after);
    fs::remove_all(folder);
    return 0;
}
