#pragma once

#include "images/RowDrag.h"
#include "preprocess/PreviewRenderer.h"

#include <QColor>
#include <QList>
#include <QListView>
#include <QPair>
#include <QString>

#include <functional>

class TileRenderer;

// What a tile of the picture grid shows of a row.
struct GridTile {
    QString name;
    QString status;
    QColor statusColour; // its text's, and
    QColor statusBackground;
    PreviewRenderer::Request request;     // the framed picture
    QList<QPair<QString, QString>> marks; // each mark's symbol and what it says
    QString toolTip;
};

// The pictures as a grid of framed tiles, in playback order: a view of the table's own model
// (one column of it, whose idRole data is the row's id) sharing the table's selection. Each tile
// is what the frame will show, tileHeight() pixels tall, drawn by its TileRenderer as it comes
// into view; until then (or while it is drawn again) the last tile kept, or a blank frame,
// stands in. The owner says what each row shows (setTileSource) and repaints the grid when rows
// change. Tiles are selected as items of any list are (click, Ctrl/Shift-click, rubber band,
// Ctrl+A); selected tiles dragged with the mouse (pressed on a selected tile; a line shows where
// they go) are reported (tilesDragged) and moved by the owner, as the table's rows are.
class PictureGrid : public QListView
{
    Q_OBJECT

public:
    static constexpr int kMinTileHeight = 120;
    static constexpr int kMaxTileHeight = 400;
    static constexpr int kDefaultTileHeight = 200;

    PictureGrid(int idRole, QWidget *parent = nullptr);
    ~PictureGrid() override;

    void setModel(QAbstractItemModel *model) override;

    void setTileSource(std::function<GridTile(int row)> source);
    GridTile tileAt(int row) const;
    quint64 idAt(int row) const;
    // The size of the frame every tile shows (its aspect ratio).
    void setFrame(const QSize &panel, bool landscape);
    void setTileHeight(int height);
    int tileHeight() const { return m_tileHeight; }
    QSize tileSize() const;
    TileRenderer *renderer() const { return m_renderer; }
    // The rows of the selected tiles, in order.
    QList<int> selectedRowNumbers() const;
    QRect tileRect(int row) const;

Q_SIGNALS:
    // The selected tiles were dragged before row destination (the row count: to the end).
    void tilesDragged(const QList<int> &rows, int destination);
    void tileDoubleClicked(int row);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    void updateGridSize();
    void forgetRemovedRows();
    int dropDestination(const QPoint &viewportPos) const;

    int m_idRole;
    std::function<GridTile(int)> m_source;
    TileRenderer *m_renderer = nullptr;
    QSize m_panel;
    bool m_landscape = false;
    int m_tileHeight = kDefaultTileHeight;
    RowDrag m_drag; // the selected tiles moved with the mouse
    bool m_forgetPosted = false;
};
