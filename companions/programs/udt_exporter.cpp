#include "export/template_export.h"

int main(int count, char** arguments) {
    return Compagnon::RunMain(Exportation::kTemplateExporter, count, arguments);
}
