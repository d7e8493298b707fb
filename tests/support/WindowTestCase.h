#pragma once

#include "WindowFixture.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>

class MainWindow;
class QCheckBox;

// The common ground of the test cases that drive a real MainWindow: a WindowFixture for the
// whole process (the program fixes its temporary location at start), and for every test
// function a fresh window, shown, with the built stand-in processor configured, a save
// location set and no TF card in the computer (the volume seam reports none); afterwards the
// processor faults are switched off again and no settings file is left behind. Its windows do
// not warn about duplicates (tests add the same picture twice on purpose); the duplicate tests
// switch that on.
class WindowTestCase : public QObject
{
    Q_OBJECT

public:
    WindowTestCase();
    ~WindowTestCase() override;

private Q_SLOTS:
    void initTestCase();

protected Q_SLOTS:
    // A test case with an init or a cleanup of its own calls these (init first, cleanup at its
    // end): QTest calls only the most derived.
    void init();
    void cleanup();

protected:
    // Pictures saved as photo_<i>.png in a folder of their own, then added to the window.
    QStringList addPictures(const QList<QImage> &images);
    // count small generated pictures (pic_0000.png, ...), added without a word from the window.
    QStringList addPictures(int count);
    // One 400 x 300 picture of each colour: a frame made from it shows that colour.
    QStringList addColours(const QList<QColor> &colours);
    // Fails the test unless the package holds exactly these frames, in this order, and its
    // playlist.json lists exactly them.
    void expectPackage(const QList<QColor> &colours) const;
    // A key file written under keys/ in the fixture, and one applied to the window.
    QString key(const QString &name, const QByteArray &json) const;
    void setKeyFile(const QString &path);
    // Stand-in processor output for the given rows, marked Done, without a run.
    void writeOutputs(std::initializer_list<int> rows);
    // Presses Start and waits for the run to end.
    void runToTheEnd(int timeoutMs = 60000);
    QString statusText(int row) const;
    // The names of the rows' pictures, in table order.
    QStringList rowNames() const;
    QCheckBox *selectAllBox() const;
    void check(std::initializer_list<int> rows);
    QString packageDir() const;

    std::unique_ptr<WindowFixture> m_fixture;
    std::unique_ptr<MainWindow> m_window;

private:
    QString nextFolder();
    int m_batch = 0;
};
