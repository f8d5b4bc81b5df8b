// The application object of the benchmarks of windows, without a screen.
#pragma once

#include <QApplication>

inline QApplication& GetApplication() {
    static int count = 1;
    static char name[] = "bench_views";
    static char* words[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(count, words);
    return application;
}
