// Runs Qt's event loop in tests until a condition holds or a second has passed.
#pragma once
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

template <class Pred>
bool ProcessUntil(Pred done) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < 1000) {
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    return done();
}
