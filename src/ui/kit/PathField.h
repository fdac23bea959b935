#pragma once

#include <QWidget>

#include <functional>
#include <vector>

namespace vellmark::kit {

class Button;
class Field;

/// The path of a file: typed, chosen in a dialog that the owner opens, or left to be found. The
/// found one stands in grey until another is chosen, and comes back when that is taken away by the
/// cross at its end.
class PathField : public QWidget {
public:
    /// Around what is seen, for the rings of its controls.
    static constexpr int ringRoom = 4;

    explicit PathField(QWidget* parent = nullptr);

    /// `chosen` is empty where none was chosen; `found` then stands in its place.
    void setPaths(const QString& chosen, const QString& found);
    void setWords(const QString& choose, const QString& reset);
    void setFieldName(const QString& name);

    /// Return, or leaving the field, after the text was changed. Escape takes the change back.
    std::function<void(const QString& path)> onEnter;
    std::function<void()> onBrowse;
    std::function<void()> onReset;

    /// In reading order.
    std::vector<QWidget*> controls() const;
    Field* field() const { return field_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void enter();
    /// Also when its size stays: other words take other room.
    void arrange();

    QString chosen_;
    Field* field_;
    Button* choose_;
    Button* reset_;
};

} // namespace vellmark::kit
