// Runs scripts in a QJSEngine with automation objects as globals, a print function, and a time
// limit: a watchdog thread interrupts a script that runs too long, between two of its steps, so
// that a call the script made into an object always completes. Failures are reported as
// "file:line: text", including errors that event handlers threw.
#pragma once
#include <QJSEngine>
#include <QString>
#include <chrono>
#include <functional>
#include <memory>

#include "widget/scriptbridge.h"

class CScriptPrinter;

class CScriptRunner {
public:
    using Output = std::function<void(const QString& line)>;
    struct Outcome {
        bool ok = true;
        bool timedOut = false;
        QString message;  // "file:line: text" when not ok
    };

    // print() in a script joins its arguments with spaces (objects as JSON) and hands the line
    // to `output`; by default it goes to stdout.
    explicit CScriptRunner(Output output = {});
    ~CScriptRunner();

    QJSEngine& Engine() { return m_engine; }
    CScriptBridge& Bridge() { return *m_pBridge; }
    void SetGlobal(const QString& name, IDispatch* object) { SetGlobal(name, m_pBridge->Wrap(object)); }
    void SetGlobal(const QString& name, const QJSValue& value) { m_engine.globalObject().setProperty(name, value); }

    Outcome RunFile(const QString& path, std::chrono::milliseconds limit);
    Outcome Run(const QString& program, const QString& fileName, std::chrono::milliseconds limit);

private:
    QString Where(const QJSValue& error, const QString& fileName) const;

    QJSEngine m_engine;  // first made, last gone: the bridge and the printer live in it
    std::unique_ptr<CScriptBridge> m_pBridge;
    std::unique_ptr<CScriptPrinter> m_pPrinter;
    QString m_fileName;           // of the current run
    QString m_firstHandlerError;  // of the current run
};
