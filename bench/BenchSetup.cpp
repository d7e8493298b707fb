#include "BenchSetup.h"

#include "app/MainWindow.h"
#include "images/ImageLoader.h"
#include "ui/AppTheme.h"
#include "ui/PaintThreads.h"
#include "ui/UiLanguage.h"

#include <QApplication>
#include <QFont>

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QLineEdit>
#include <QTimer>

BenchSetup::BenchSetup()
    : m_settings(
          QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("VeloraOfflineTool.ini")))
    , m_previousCwd(QDir::currentPath())
    , m_previousTmp(qgetenv("TMPDIR"))
{
    const QString processorDir = QDir::cleanPath(
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bin/processor")));
    QFile config(path(QStringLiteral("tarngui_lite.json")));
    if (config.open(QIODevice::WriteOnly))
        config.write(
            QStringLiteral(R"({"variants": {"lite": {"executable": "%1/TARN-lite", "work_dir": "%1"}}})")
                .arg(processorDir)
                .toUtf8());
    config.close();
    QDir::setCurrent(m_scratch.path());
    qputenv("TMPDIR", QFile::encodeName(m_scratch.path()));
    QFile::remove(m_settings);
}

BenchSetup::~BenchSetup()
{
    QFile::remove(m_settings);
    QDir::setCurrent(m_previousCwd);
    if (m_previousTmp.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", m_previousTmp);
}

int BenchSetup::takeOption(QStringList &args, const QString &name, int fallback)
{
    const int at = int(args.indexOf(name));
    if (at < 0 || at + 1 >= args.size())
        return fallback;
    const int value = args.at(at + 1).toInt();
    args.remove(at, 2);
    return value;
}

void BenchSetup::prepareProgram()
{
    UiLanguage::set(UiLanguage::English);
    ImageLoader::prepareReaders();
    PaintThreads::keepNormal();
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), 9));
    AppTheme::applyTo(qApp);
}

void BenchSetup::prepare(MainWindow &window) const
{
    for (QLineEdit *edit : window.findChildren<QLineEdit *>()) {
        if (edit->placeholderText().startsWith(QStringLiteral("Required")))
            edit->setText(path(QStringLiteral("out")));
    }
}

void BenchSetup::waitFor(int ms, const std::function<bool()> &done)
{
    // A nested loop quit by timers: waiting never spins a core (processEvents would).
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    deadline.start(ms);
    QTimer poll;
    if (done) {
        QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
            if (done())
                loop.quit();
        });
        poll.start(10);
        if (done())
            return;
    }
    loop.exec();
}
