#include "export_geo/geo_writer.h"

#include <cmath>
#include <fstream>

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

namespace Exportation {

namespace {

constexpr double kSecondsPerTick = 1e-7;

// A drawing in whole steps: ±180 degrees in 32 bits leave 1e-7 degrees a step, and with altitudes up to 2000
// m in the same steps 1e-6.
constexpr std::string_view kDrawingUnits = "SUB_UNITS_PER_MASTER_UNIT=1000";
constexpr SGeoFormat kFormats[] = {
    {"ESRI Shapefile", "ESRI Shapefile", ".shp", true, true},
    {"KML", "KML", ".kml", true, true, {}, "</Document></kml>\n"},
    {"GML", "GML", ".gml", true, true, {}, "</ogr:FeatureCollection>\n"},
    {"DXF", "DXF", ".dxf", false, true},
    {"Geoconcept",
     "Geoconcept",
     ".gxt",
     true,
     true,
     "Track.Points",
     {},
     {"EXTENSION=GXT"},
     {"EXTENSION=GXT"}},
    {"GMT", "OGR_GMT", ".gmt", true, true},
    // In whole steps as well: without bounds they are ten times as long.
    {"MapInfo File", "MapInfo File", ".tab", true, false, {}, {}, {}, {}, "BOUNDS=-180,-90,180,90", ".mif"},
    {"DGN",
     "DGN",
     ".dgn",
     false,
     true,
     {},
     {},
     {kDrawingUnits, "UOR_PER_SUB_UNIT=10000"},
     {kDrawingUnits, "UOR_PER_SUB_UNIT=1000", "3D=YES", "ORIGIN=0,0,0"}},
};

} // namespace

std::span<const SGeoFormat> GetGeoFormats() { return kFormats; }

CGeoWriter::CGeoWriter() {
    GDALAllRegister();
    CPLPushErrorHandler(CPLQuietErrorHandler);
}

CGeoWriter::~CGeoWriter() {
    if (m_file) GDALClose(m_file);
    CPLPopErrorHandler();
}

bool CGeoWriter::Fail() {
    if (m_fault.empty()) m_fault = CPLGetLastErrorMsg();
    while (m_fault.ends_with('\n')) m_fault.pop_back();
    return false;
}

bool CGeoWriter::Open(const std::filesystem::path& main, const SGeoOptions& options,
                      const STrackFields& fields, const CClock& clock) {
    m_options = options;
    m_fields = fields;
    m_clock = &clock;
    m_main = main;
    CPLErrorReset();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(options.format->driver);
    if (!driver) return Fail();
    CPLStringList creation;
    for (const std::string_view option :
         options.is25d ? options.format->creation25d : options.format->creation)
        if (!option.empty()) creation.AddString(std::string(option).c_str());
    m_file = driver->Create(main.c_str(), 0, 0, 0, GDT_Unknown, creation.List());
    if (!m_file) return Fail();
    OGRSpatialReference system;
    system.SetWellKnownGeogCS("WGS84");
    system.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::string layer =
        options.format->layer.empty() ? main.stem().string() : std::string(options.format->layer);
    CPLStringList layerOptions;
    if (options.format->layerOption) layerOptions.AddString(options.format->layerOption);
    m_layer = m_file->CreateLayer(layer.c_str(), &system, options.is25d ? wkbPoint25D : wkbPoint,
                                  layerOptions.List());
    if (!m_layer) return Fail();
    if (!options.format->hasAttributes) return true;
    return AddAttribute("Date", {}) && (!clock.KnowsUtc() || AddAttribute("UTC", {}, true)) &&
           AddAttribute("Altitude", fields.altitude) &&
           (!options.motion || (AddAttribute("Heave", fields.heave) && AddAttribute("Surge", fields.surge) &&
                                AddAttribute("Sway", fields.sway))) &&
           (!options.speed ||
            (AddAttribute("SpeedNorth", fields.speedNorth) && AddAttribute("SpeedEast", fields.speedEast) &&
             AddAttribute("SpeedUp", fields.speedUp))) &&
           (!options.orientation ||
            (AddAttribute("Heading", fields.heading) && AddAttribute("Roll", fields.roll) &&
             AddAttribute("Pitch", fields.pitch)));
}

// Names of at most ten characters, which every format keeps. A field that the channel does not have makes no
// column.
bool CGeoWriter::AddAttribute(const char* name, SFieldRef field, bool isText) {
    const bool isDate = std::string_view(name) == "Date";
    if (!field && !isText && !isDate) return true;
    OGRFieldDefn column(name, isText ? OFTString : OFTReal);
    if (isText) column.SetWidth(32);
    if (m_layer->CreateField(&column) != OGRERR_NONE) return Fail();
    m_attributes.push_back({m_layer->GetLayerDefn()->GetFieldIndex(name), field, isText});
    return true;
}

bool CGeoWriter::Add(const std::uint8_t* payload, std::int64_t date) {
    OGRFeature feature(m_layer->GetLayerDefn());
    for (const SAttribute& attribute : m_attributes) {
        if (attribute.isText) {
            char text[64];
            *m_iso.Format(m_clock->GetUtc(date), text) = '\0';
            feature.SetField(attribute.index, text);
            continue;
        }
        const double value = attribute.field ? GetValue(payload, attribute.field)
                                             : static_cast<double>(m_clock->Shift(date)) * kSecondsPerTick;
        if (std::isfinite(value)) feature.SetField(attribute.index, value);
    }
    const double altitude = GetValue(payload, m_fields.altitude);
    OGRPoint point(std::remainder(GetValue(payload, m_fields.longitude), 360.0),
                   GetValue(payload, m_fields.latitude));
    if (m_options.is25d) point.setZ(std::isfinite(altitude) ? altitude : 0.0);
    feature.SetGeometry(&point);
    ++m_count;
    return m_layer->CreateFeature(&feature) == OGRERR_NONE || Fail();
}

bool CGeoWriter::Close() {
    CPLErrorReset();
    GDALClose(m_file);
    m_file = nullptr;
    m_layer = nullptr;
    return (CPLGetLastErrorType() < CE_Failure && IsWhole()) || Fail();
}

void CGeoWriter::Abandon() {
    [[maybe_unused]] static GDALDataset* kept; // reachable until the process ends
    kept = m_file;
    m_file = nullptr;
    m_layer = nullptr;
}

bool CGeoWriter::IsWhole() const {
    if (!m_options.format->tail.empty()) {
        std::string end(m_options.format->tail.size(), '\0');
        std::ifstream file(m_main, std::ios::binary);
        file.seekg(-static_cast<std::streamoff>(end.size()), std::ios::end);
        file.read(end.data(), static_cast<std::streamsize>(end.size()));
        return file && end == m_options.format->tail;
    }
    const char* const drivers[] = {m_options.format->driver, nullptr};
    GDALDataset* file = GDALDataset::Open(m_main.c_str(), GDAL_OF_VECTOR, drivers);
    const bool isWhole = file && file->GetLayer(0) && file->GetLayer(0)->GetFeatureCount() == m_count;
    if (file) GDALClose(file);
    return isWhole;
}

} // namespace Exportation
