#include "export/sbet_export.h"

int main(int count, char** arguments) {
    return Compagnon::RunMain(Exportation::kResultToSbet, count, arguments);
}
