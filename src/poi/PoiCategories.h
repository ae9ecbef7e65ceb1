// The POI categories: a file's base name (its code or its name, any case)
// chooses the icon drawn for all its points.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace satwalk::poi {

struct PoiCategory {
    std::string_view code;
    std::string_view name;
};

// Rows 1 to 30; index 0 is "no category". The names stand exactly as the
// files in use are named, "Informaion" included.
inline constexpr std::array<PoiCategory, 31> PoiCategoryTable = {{
    {"", ""},
    {"00163", "Swimming Area"},
    {"08214", "Post Office"},
    {"00153", "Drinking Water"},
    {"00006", "Bank"},
    {"00156", "Medical Facility"},
    {"00157", "Informaion"},
    {"00014", "Danger Area"},
    {"00158", "Parking Area"},
    {"08243", "Tunnel"},
    {"08245", "Forest"},
    {"08233", "Bridge"},
    {"08207", "Car Repair"},
    {"00170", "Car"},
    {"08235", "Cemetery"},
    {"00013", "Bar"},
    {"08241", "Military"},
    {"00011", "Restaurant"},
    {"08236", "Church"},
    {"00008", "Gas Station"},
    {"16391", "Tall Tower"},
    {"16384", "Airport"},
    {"16388", "Heliport"},
    {"16392", "Short Tower"},
    {"00007", "Fishing Area"},
    {"00155", "Telephone"},
    {"08208", "Fast Food"},
    {"08244", "Beach"},
    {"00172", "Shopping Center"},
    {"00018", "Waypoint"},
    {"00159", "Park"},
}};
inline constexpr std::uint32_t kPoiCategoryCount = 30;

// The category of a base name, 1 to 30, or 0 when no row's code or name
// equals it (ASCII letters compared without case). On a match `baseName`
// becomes the row's name.
std::uint32_t LookUpPoiCategory(std::string& baseName);

// A POI file's base name as the import takes it: the file name (without
// folders) up to its first '.', read as UTF-8 when valid else GB18030, cut
// to 19 UTF-16 units (the width of the name buffer).
std::string PoiBaseName(std::string_view path);

}  // namespace satwalk::poi
