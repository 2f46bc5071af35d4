/// The parts of the overlay that are painted: the software back end of the views knows neither masks nor
/// shadows. Each paints again only when what it shows has changed. The view engine derives from them, so they
/// are not final. Main thread.
#pragma once

#include "ui/OverlayContent.h"
#include "ui/Theme.h"
#include "ui/WaveformBars.h"

#include <QPointer>
#include <QQuickPaintedItem>

namespace velorin {

/// Makes the items known to the views as the module "Velorin".
void registerOverlayItems();

/// The level meter: a bar a level, lit from `tip` to `base`, optionally fading out towards both ends.
class WaveformView : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QObject* content READ content WRITE setContent NOTIFY changed)
    Q_PROPERTY(int barCount MEMBER barCount_ NOTIFY changed)
    Q_PROPERTY(bool idle MEMBER idle_ NOTIFY changed)
    Q_PROPERTY(double fixedBarWidth MEMBER fixedBarWidth_ NOTIFY changed)
    Q_PROPERTY(double spacing MEMBER spacing_ NOTIFY changed)
    Q_PROPERTY(double minBarHeight MEMBER minBarHeight_ NOTIFY changed)
    Q_PROPERTY(QColor tip MEMBER tip_ NOTIFY changed)
    Q_PROPERTY(QColor base MEMBER base_ NOTIFY changed)
    /// The share of the width over which either end fades; 0 for none.
    Q_PROPERTY(double fade MEMBER fade_ NOTIFY changed)
public:
    explicit WaveformView(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

    [[nodiscard]] QObject* content() const { return content_; }
    void setContent(QObject* content);

Q_SIGNALS:
    void changed();

private:
    void takeLevels();

    QPointer<OverlayContent> content_;
    QList<float> levels_;
    int barCount_ = 10;
    bool idle_ = false;
    double fixedBarWidth_ = 0; ///< 0: the bars share the width.
    double spacing_ = 2;
    double minBarHeight_ = 5;
    QColor tip_;
    QColor base_;
    double fade_ = 0;
};

/// One line of text whose end stays in view and whose beginning fades out. Text that is written from right to
/// left stands at the right and fades there.
class LiveTextView : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QString text MEMBER text_ NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
    Q_PROPERTY(double pixelSize MEMBER pixelSize_ NOTIFY changed)
    Q_PROPERTY(bool fades MEMBER fades_ NOTIFY changed)
    /// Where the caret stands, in units of the item; and the base line.
    Q_PROPERTY(double caretX READ caretX NOTIFY laidOut)
    Q_PROPERTY(double textBaseline READ textBaseline NOTIFY laidOut)
public:
    explicit LiveTextView(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

    [[nodiscard]] double caretX() const { return caretX_; }
    [[nodiscard]] double textBaseline() const { return baseline_; }

Q_SIGNALS:
    void changed();
    void laidOut();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void layOut();
    [[nodiscard]] QFont font() const;

    QString text_;
    QColor color_;
    double pixelSize_ = 14.5;
    bool fades_ = true;
    QString line_; ///< What of the text has room.
    bool isRightToLeft_ = false;
    double left_ = 0;
    double caretX_ = 0;
    double baseline_ = 0;
};

/// The glass on which a look stands, with its border and its shadow, in a frame that leaves room for that.
class OverlayBackdrop : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(double cornerRadius MEMBER cornerRadius_ NOTIFY changed)
    Q_PROPERTY(QColor fill MEMBER fill_ NOTIFY changed)
    Q_PROPERTY(QColor border MEMBER border_ NOTIFY changed)
    Q_PROPERTY(QColor edge MEMBER edge_ NOTIFY changed)
    /// Without a compositor the window itself is cut to the shape, and what lies below cannot shine through.
    Q_PROPERTY(bool composited MEMBER composited_ NOTIFY changed)
public:
    explicit OverlayBackdrop(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    void paintShaped(QPainter& painter, const QRectF& look) const;

    double cornerRadius_ = 0;
    QColor fill_;
    QColor border_;
    QColor edge_;
    bool composited_ = true;
};

/// The icon of the application that receives the text, or the first letter of its name.
class TargetAppIcon : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(bool hasApp MEMBER hasApp_ NOTIFY changed)
    Q_PROPERTY(QString icon MEMBER icon_ NOTIFY changed)
    Q_PROPERTY(QString name MEMBER name_ NOTIFY changed)
    Q_PROPERTY(bool isError MEMBER isError_ NOTIFY changed)
    Q_PROPERTY(QColor secondary MEMBER secondary_ NOTIFY changed)
    Q_PROPERTY(QColor red MEMBER red_ NOTIFY changed)
public:
    explicit TargetAppIcon(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    void paintLetter(QPainter& painter) const;

    bool hasApp_ = false;
    QString icon_;
    QString name_;
    bool isError_ = false;
    QColor secondary_;
    QColor red_;
};

} // namespace velorin
