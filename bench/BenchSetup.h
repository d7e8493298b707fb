#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

class MainWindow;

// The world a benchmark's window lives in: a scratch folder that is also the temporary
// location and the working directory, a configuration there that points at the built
// stand-in processor, no settings file beside the benchmark, and the window's save location
// inside the scratch folder. The working directory and TMPDIR are restored afterwards.
class BenchSetup
{
public:
    BenchSetup();
    ~BenchSetup();

    QString path(const QString &relative) const { return m_scratch.filePath(relative); }
    void prepare(MainWindow &window) const;

    // What the program sets up before its window (language, image limits, style, font and
    // theme), so that widgets cost what they cost in the program.
    static void prepareProgram();
    // The value of "--name N" among args (taken out of them), or fallback.
    static int takeOption(QStringList &args, const QString &name, int fallback);

    // Runs the event loop for ms milliseconds (or until done() holds, checked every 10 ms).
    static void waitFor(int ms, const std::function<bool()> &done = {});

private:
    QTemporaryDir m_scratch;
    QString m_settings;
    QString m_previousCwd;
    QByteArray m_previousTmp;
};
