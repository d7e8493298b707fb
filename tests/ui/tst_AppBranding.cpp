#include "ui/AppBranding.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QTest>
#include <QVBoxLayout>

class TestAppBranding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void resourcesAreLinkedIn();
    void logoIsGreenAndSquare();
    void appIconHasEverySize();
    void logoPixmapScalesOnlyPositiveSizes();
    void applyWindowIcon();
    void headerRowWithVersion();
    void headerRowWithoutVersion();
    void insertDialogHeaderGoesFirst();
    void updateHeaderTitle();
};

void TestAppBranding::resourcesAreLinkedIn()
{
    // Both resources of the collection must survive the static library's link.
    QFile manifest(QStringLiteral(":/manifest/processor_manifest.json"));
    QVERIFY(manifest.open(QIODevice::ReadOnly));
    const QJsonDocument document = QJsonDocument::fromJson(manifest.readAll());
    QVERIFY(document.isObject());
    QCOMPARE(document.object().value(QStringLiteral("processor_dir")).toString(),
             QStringLiteral("processor"));

    const QImage logo(QStringLiteral(":/branding/logo.png"));
    QVERIFY(!logo.isNull());
}

void TestAppBranding::logoIsGreenAndSquare()
{
    const QImage logo = QImage(QStringLiteral(":/branding/logo.png")).convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(logo.width(), logo.height());
    QVERIFY(logo.width() >= 256);
    // The theme's green fills the tile around the frame, and it still shows at 16 px.
    QCOMPARE(QColor(logo.pixel(logo.width() / 2, 24)).name(), QStringLiteral("#2b5e45"));
    const QImage small = logo.scaled(16, 16, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    const QColor edge = small.pixelColor(8, 1);
    QVERIFY(edge.green() > edge.red() && edge.green() > edge.blue());
    QVERIFY(qAlpha(logo.pixel(0, 0)) == 0); // rounded corners are transparent
}

void TestAppBranding::appIconHasEverySize()
{
    const QIcon icon = AppBranding::appIcon();
    QVERIFY(!icon.isNull());
    const QList<QSize> sizes = icon.availableSizes();
    for (int size : {16, 24, 32, 48, 64, 128, 256})
        QVERIFY2(sizes.contains(QSize(size, size)), qPrintable(QString::number(size)));
    QCOMPARE(AppBranding::appIcon().cacheKey(), icon.cacheKey());
}

void TestAppBranding::logoPixmapScalesOnlyPositiveSizes()
{
    const QSize own = QImage(QStringLiteral(":/branding/logo.png")).size();
    QCOMPARE(AppBranding::logoPixmap(0).size(), own);
    QCOMPARE(AppBranding::logoPixmap(-5).size(), own);
    QCOMPARE(AppBranding::logoPixmap(44).size(), QSize(44, 44));
    QCOMPARE(AppBranding::logoPixmap(1).size(), QSize(1, 1));
}

void TestAppBranding::applyWindowIcon()
{
    AppBranding::applyWindowIcon(nullptr); // no crash
    QWidget widget;
    AppBranding::applyWindowIcon(&widget);
    QVERIFY(!widget.windowIcon().isNull());
    QVERIFY(widget.windowIcon().availableSizes().contains(QSize(32, 32)));
}

void TestAppBranding::headerRowWithVersion()
{
    QWidget parent;
    QWidget *row = AppBranding::makeHeaderRow(QStringLiteral("Title"), &parent, QStringLiteral("1.0.3 beta"));
    QCOMPARE(row->parentWidget(), &parent);
    auto *layout = qobject_cast<QHBoxLayout *>(row->layout());
    QVERIFY(layout);
    QCOMPARE(layout->spacing(), 10);
    QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 0));

    auto *logo = qobject_cast<QLabel *>(layout->itemAt(0)->widget());
    QVERIFY(logo);
    QCOMPARE(logo->size(), QSize(48, 48));
    QCOMPARE(logo->minimumSize(), QSize(48, 48));
    QCOMPARE(logo->maximumSize(), QSize(48, 48));
    QCOMPARE(logo->pixmap().size(), QSize(44, 44));
    QCOMPARE(logo->alignment(), Qt::AlignCenter);

    auto *title = row->findChild<QLabel *>(QStringLiteral("tarnHeaderTitle"));
    QVERIFY(title);
    QCOMPARE(title->text(), QStringLiteral("Title"));
    QVERIFY(title->wordWrap());
    QCOMPARE(title->font().weight(), QFont::Bold);
    QCOMPARE(title->font().pointSize(), row->font().pointSize() + 1);

    auto *version = row->findChild<QLabel *>(QStringLiteral("tarnHeaderVersion"));
    QVERIFY(version);
    QCOMPARE(version->text(), QStringLiteral("v1.0.3 beta"));
    QVERIFY(version->styleSheet().endsWith(QStringLiteral("font-size:11px;")));
}

void TestAppBranding::headerRowWithoutVersion()
{
    QWidget parent;
    QWidget *row = AppBranding::makeHeaderRow(QStringLiteral("Title"), &parent, QString());
    QVERIFY(row->findChild<QLabel *>(QStringLiteral("tarnHeaderTitle")));
    QVERIFY(!row->findChild<QLabel *>(QStringLiteral("tarnHeaderVersion")));
}

void TestAppBranding::insertDialogHeaderGoesFirst()
{
    AppBranding::insertDialogHeader(nullptr, QStringLiteral("x")); // no crash

    QDialog dialog;
    auto *layout = new QVBoxLayout(&dialog);
    auto *body = new QLabel(QStringLiteral("body"), &dialog);
    layout->addWidget(body);
    AppBranding::insertDialogHeader(layout, QStringLiteral("Log"));
    QCOMPARE(layout->count(), 2);
    QWidget *header = layout->itemAt(0)->widget();
    QVERIFY(header);
    QCOMPARE(header->parentWidget(), &dialog);
    QCOMPARE(header->findChild<QLabel *>(QStringLiteral("tarnHeaderTitle"))->text(), QStringLiteral("Log"));
    QVERIFY(!header->findChild<QLabel *>(QStringLiteral("tarnHeaderVersion")));
    QCOMPARE(layout->itemAt(1)->widget(), body);
}

void TestAppBranding::updateHeaderTitle()
{
    AppBranding::updateHeaderTitle(nullptr, QStringLiteral("x")); // no crash

    QWidget plain;
    auto *label = new QLabel(QStringLiteral("keep"), &plain);
    AppBranding::updateHeaderTitle(&plain, QStringLiteral("changed")); // no header: nothing happens
    QCOMPARE(label->text(), QStringLiteral("keep"));

    QDialog dialog;
    auto *layout = new QVBoxLayout(&dialog);
    AppBranding::insertDialogHeader(layout, QStringLiteral("Old"));
    AppBranding::updateHeaderTitle(&dialog, QStringLiteral("New"));
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("tarnHeaderTitle"))->text(), QStringLiteral("New"));
}

QTEST_MAIN(TestAppBranding)
#include "tst_AppBranding.moc"
