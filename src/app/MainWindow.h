#pragma once

#include "processor/ProcessorConfig.h"
#include "ui/UiLanguage.h"

#include <QMainWindow>

class QAction;
class QDialog;
class QLabel;
class QMenu;
class QPlainTextEdit;

// The main window: owns all state of the tool and its widgets. Its member functions are
// spread over files named for the concern they implement (MainWindow*.cpp).
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // This edition has no language switch: deliberately does nothing.
    void setUiLanguage(UiLanguage::Lang lang);

    void appendLog(const QString &text);
    void retranslateUi();
    QString currentVariantId() const;

public Q_SLOTS:
    void onShowLog();

private:
    void setupMenuBar();
    void setupUI();
    void setupLogWindow();
    void showAboutBox();
    void loadProcessorConfig();

    ProcessorConfig m_processorConfig;
    QString m_variantId;

    QMenu *m_helpMenu = nullptr;
    QAction *m_actionAbout = nullptr;
    QAction *m_actionViewLog = nullptr;
    QLabel *m_introLabel = nullptr;
    QDialog *m_logWindow = nullptr;
    QPlainTextEdit *m_logView = nullptr;
};
