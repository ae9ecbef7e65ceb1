// satwalk-tool poi: a POI file imported exactly as the program imports it,
// printed as one JSON object: the category from the file's name and every
// point as stored (names and notes in UTF-8).
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "Json.h"
#include "PoiCategories.h"
#include "PoiCsv.h"
#include "PoiGpx.h"
#include "Strings.h"
#include "ToolCommands.h"

namespace satwalk::tools {

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool poi FILE\n"
    "  Imports a POI file (CSV, or a GPX file's waypoints; the content\n"
    "  decides) as the program does and prints one JSON object\n"
    "  {\"category\", \"categoryName\", \"points\": [{\"latitude\", \"longitude\",\n"
    "  \"name\", \"note\"}]}; a waypoint whose symbol or type names a category\n"
    "  has that category's number as its own \"category\".\n";

}  // namespace

const char* PoiUsage() {
    return kUsage;
}

int RunPoi(int argc, char** argv) {
    if (argc == 1 && (std::strcmp(argv[0], "-h") == 0 || std::strcmp(argv[0], "--help") == 0)) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (argc != 1 || argv[0][0] == '-') {
        if (argc == 0)
            std::fputs("satwalk-tool poi: no FILE given\n", stderr);
        else if (argv[0][0] == '-')
            std::fprintf(stderr, "satwalk-tool poi: unknown option %s\n", argv[0]);
        else
            std::fprintf(stderr, "satwalk-tool poi: only one FILE may be given\n");
        std::fputs(kUsage, stderr);
        return 2;
    }
    // Streamed: each point is printed as it is read, up to the budget of a
    // file the program imports.
    std::string name = poi::PoiBaseName(argv[0]);
    const std::uint32_t category = poi::LookUpPoiCategory(name);
    std::string out = "{\"category\":";
    out += std::to_string(category);
    out += ",\"categoryName\":";
    common::AppendJsonString(out, name);
    out += ",\"points\":[";
    bool first = true;
    bool failed = false;
    const auto print = [&](const poi::PoiRecord& r) {
        out += first ? "{\"latitude\":" : ",{\"latitude\":";
        first = false;
        common::AppendJsonNumber(out, r.latitude);
        out += ",\"longitude\":";
        common::AppendJsonNumber(out, r.longitude);
        out += ",\"name\":";
        common::AppendJsonString(out, r.name);
        out += ",\"note\":";
        common::AppendJsonString(out, r.note);
        if (r.category != 0)
            out += ",\"category\":" + std::to_string(r.category);
        out += '}';
        if (out.size() > (1 << 20)) {
            failed = failed || !WriteAll(STDOUT_FILENO, out);
            out.clear();
        }
    };
    // The content decides, as in the program: GPX waypoints, else CSV.
    poi::PoiRead read = poi::PoiRead::Read;
    if (track::SniffTrackFilePath(argv[0]) == track::TrackFileKind::Gpx) {
        poi::PoiList list;
        bool cut = false;
        if (!poi::ReadPoiGpx(argv[0], list, poi::kMaxPoisPerFile, &cut))
            read = poi::PoiRead::OpenFailed;
        for (std::uint32_t i = 0; i < list.Count(); ++i) print(list.At(i));
        if (cut)
            read = poi::PoiRead::Truncated;
    } else {
        read = poi::ReadPoiCsv(argv[0], print);
    }
    if (read == poi::PoiRead::OpenFailed) {
        std::fprintf(stderr, "satwalk-tool poi: %s: %s\n", argv[0],
                     common::LoadString(common::kStrOpenPoiFileFailed));
        return 1;
    }
    if (read == poi::PoiRead::Truncated) {
        std::fprintf(stderr,
                     "satwalk-tool poi: %s: more than %llu points; the first %llu, as the "
                     "program imports them\n",
                     argv[0], static_cast<unsigned long long>(poi::kMaxPoisPerFile),
                     static_cast<unsigned long long>(poi::kMaxPoisPerFile));
    }
    // The program would import nothing and add an empty group: said here.
    if (first) {
        std::fprintf(stderr, "satwalk-tool poi: %s: holds no POI\n", argv[0]);
        return 1;
    }
    out += "]}\n";
    return WriteAll(STDOUT_FILENO, out) && !failed ? 0 : 1;
}

}  // namespace satwalk::tools
