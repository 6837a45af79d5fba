#include "widget/scriptrunner.h"

#include <QFile>
#include <QStringList>
#include <QUrl>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

// The receiving end of print().
class CScriptPrinter : public QObject {
    Q_OBJECT
public:
    explicit CScriptPrinter(CScriptRunner::Output output) : m_output(std::move(output)) {}
    Q_INVOKABLE void print(const QString& line) {
        if (m_output) m_output(line);
        else std::printf("%s\n", qPrintable(line));
        std::fflush(stdout);
    }

private:
    CScriptRunner::Output m_output;
};

namespace {

const char* const kPrintFunction = R"JS(
(function (printer) {
    const text = v => (v !== null && typeof v === "object" && !(v instanceof Error)) ? JSON.stringify(v) : String(v);
    return (...values) => printer.print(values.map(text).join(" "));
})
)JS";

// Interrupts the engine when the limit passes before the run ends.
class CWatchdog {
public:
    CWatchdog(QJSEngine& engine, std::chrono::milliseconds limit)
        : m_thread([this, &engine, limit] {
              std::unique_lock lock(m_mutex);
              if (!m_wake.wait_for(lock, limit, [this] { return m_bDone; })) {
                  m_bFired = true;
                  engine.setInterrupted(true);
              }
          }) {}
    ~CWatchdog() {
        {
            std::lock_guard lock(m_mutex);
            m_bDone = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
    bool Fired() const { return m_bFired; }

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_bDone = false;
    std::atomic<bool> m_bFired = false;
    std::thread m_thread;  // last, so that it starts once the rest is made
};

QString FileNameOf(const QString& location) {
    const QUrl url(location);
    return url.isLocalFile() ? url.toLocalFile() : location;
}

// A frame of an exception's stack trace reads "function:line:file".
QString WhereInTrace(const QString& frame, const QString& fileName) {
    const QStringList parts = frame.split(':');
    return QString("%1:%2").arg(fileName, parts.size() > 1 ? parts[1] : QString("?"));
}

}  // namespace

CScriptRunner::CScriptRunner(Output output)
    : m_pBridge(std::make_unique<CScriptBridge>(&m_engine)), m_pPrinter(std::make_unique<CScriptPrinter>(std::move(output))) {
    QJSEngine::setObjectOwnership(m_pPrinter.get(), QJSEngine::CppOwnership);
    SetGlobal("print", m_engine.evaluate(kPrintFunction).call({m_engine.newQObject(m_pPrinter.get())}));
    m_pBridge->SetErrorReporter([this](const QJSValue& error, const QString& event) {
        if (m_firstHandlerError.isEmpty())
            m_firstHandlerError = QString("%1: in a handler of %2: %3").arg(Where(error, m_fileName), event, error.toString());
    });
}

CScriptRunner::~CScriptRunner() {
    m_pBridge.reset();  // releases the objects before the engine collects their wrappers
    m_engine.collectGarbage();
}

// "file:line" of an error; just the file for an error made where no script line was running.
QString CScriptRunner::Where(const QJSValue& error, const QString& fileName) const {
    const QString file = error.property("fileName").isString() ? FileNameOf(error.property("fileName").toString()) : fileName;
    const int line = error.property("lineNumber").toInt();
    return line > 0 ? QString("%1:%2").arg(file).arg(line) : file;
}

CScriptRunner::Outcome CScriptRunner::RunFile(const QString& path, std::chrono::milliseconds limit) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {false, false, QString("%1: cannot read: %2").arg(path, file.errorString())};
    return Run(QString::fromUtf8(file.readAll()), path, limit);
}

CScriptRunner::Outcome CScriptRunner::Run(const QString& program, const QString& fileName, std::chrono::milliseconds limit) {
    m_fileName = fileName;
    m_firstHandlerError.clear();
    QJSValue result;
    QStringList trace;  // filled when the script throws, whatever it throws
    bool timedOut = false;
    {
        CWatchdog watchdog(m_engine, limit);
        result = m_engine.evaluate(program, fileName, 1, &trace);
        timedOut = watchdog.Fired();
    }
    m_engine.setInterrupted(false);
    if (timedOut) {
        const QString where = trace.isEmpty() ? fileName : WhereInTrace(trace.front(), fileName);
        return {false, true, QString("%1: stopped: the script ran longer than its time limit of %2 s")
                                 .arg(where).arg(static_cast<double>(limit.count()) / 1000.0)};
    }
    if (result.isError()) return {false, false, QString("%1: %2").arg(Where(result, fileName), result.toString())};
    if (!trace.isEmpty()) return {false, false, QString("%1: uncaught %2").arg(WhereInTrace(trace.front(), fileName), result.toString())};
    if (!m_firstHandlerError.isEmpty()) return {false, false, m_firstHandlerError};
    return {};
}

#include "scriptrunner.moc"
