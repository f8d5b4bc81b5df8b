#include "export/kml_export.h"

int main(int count, char** arguments) {
    return Compagnon::RunMain(Exportation::kResultToKml, count, arguments);
}
