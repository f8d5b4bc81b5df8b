#include "export/text_export.h"

int main(int count, char** arguments) {
    return Compagnon::RunMain(Exportation::kInputToText, count, arguments);
}
