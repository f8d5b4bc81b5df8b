#include "export_geo/geo_export.h"

int main(int count, char** arguments) {
    return Compagnon::RunMain(Exportation::kResultToGeo, count, arguments);
}
