// satwalk-tool poi: a POI file imported exactly as the program imports it,
// printed as one JSON object: the category from the file's name and every
// point as stored (names and notes in UTF-8).
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "Json.h"
#include "PoiStore.h"
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

int RunPoi(int argc, char** argv) {
    if (argc == 1 && (std::strcmp(argv[0], "-h") == 0 || std::strcmp(argv[0], "--help") == 0)) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (argc != 1) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    poi::PoiStore store;
    const poi::PoiImport imported = poi::ImportPoiFile(store, argv[0]);
    if (!imported.read) {
        std::fprintf(stderr, "satwalk-tool poi: %s: %s\n", argv[0], poi::kOpenPoiFileFailed);
        return 1;
    }
    std::string out = "{\"category\":";
    out += std::to_string(imported.category);
    out += ",\"categoryName\":";
    common::AppendJsonString(out, imported.name);
    out += ",\"points\":[";
    const poi::PoiList& points = store.At(0).points;
    for (std::uint32_t i = 0; i < points.Count(); ++i) {
        const poi::PoiRecord& r = points.At(i);
        out += i == 0 ? "{\"latitude\":" : ",{\"latitude\":";
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
            if (!WriteAll(STDOUT_FILENO, out))
                return 1;
            out.clear();
        }
    }
    out += "]}\n";
    return WriteAll(STDOUT_FILENO, out) ? 0 : 1;
}

}  // namespace satwalk::tools
