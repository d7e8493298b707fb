#include "ui/AppBranding.h"

#include "ui/AppTheme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

namespace AppBranding {

namespace {
const QString kLogoPath = QStringLiteral(":/branding/logo.png");
}

QIcon appIcon()
{
    static QIcon icon;
    if (icon.isNull()) {
        const QPixmap logo(kLogoPath);
        if (!logo.isNull()) {
            for (int size : {16, 24, 32, 48, 64, 128, 256})
                icon.addPixmap(logo.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        }
    }
    return icon;
}

void applyWindowIcon(QWidget *widget)
{
    if (!widget)
        return;
    const QIcon icon = appIcon();
    if (!icon.isNull())
        widget->setWindowIcon(icon);
}

QPixmap logoPixmap(int size)
{
    const QPixmap logo(kLogoPath);
    if (size >= 1 && !logo.isNull())
        return logo.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return logo;
}

QWidget *makeHeaderRow(const QString &title, QWidget *parent, const QString &version)
{
    auto *row = new QWidget(parent);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);

    auto *logo = new QLabel(row);
    logo->setPixmap(logoPixmap(44));
    logo->setFixedSize(48, 48);
    logo->setAlignment(Qt::AlignCenter);
    logo->setScaledContents(false);
    layout->addWidget(logo);

    auto *column = new QVBoxLayout;
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);

    auto *titleLabel = new QLabel(title, row);
    titleLabel->setObjectName(QStringLiteral("tarnHeaderTitle"));
    QFont font = titleLabel->font();
    if (font.pointSize() > 0)
        font.setPointSize(font.pointSize() + 1);
    else
        font.setPixelSize(font.pixelSize() + 1);
    font.setWeight(QFont::Bold);
    titleLabel->setFont(font);
    titleLabel->setWordWrap(true);
    column->addWidget(titleLabel);

    if (!version.isEmpty()) {
        auto *versionLabel = new QLabel(QStringLiteral("v%1").arg(version), row);
        versionLabel->setObjectName(QStringLiteral("tarnHeaderVersion"));
        versionLabel->setStyleSheet(AppTheme::mutedLabelStyleSheet("font-size:11px;"));
        column->addWidget(versionLabel);
    }
    layout->addLayout(column, 1);
    return row;
}

void insertDialogHeader(QVBoxLayout *layout, const QString &title)
{
    if (!layout)
        return;
    layout->insertWidget(0, makeHeaderRow(title, layout->parentWidget(), QString()));
}

void updateHeaderTitle(QWidget *root, const QString &text)
{
    if (!root)
        return;
    if (auto *label = root->findChild<QLabel *>(QStringLiteral("tarnHeaderTitle")))
        label->setText(text);
}

} // namespace AppBranding
