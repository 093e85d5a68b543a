#pragma once

#include "console/ipv4_address.h"

#include <QWidget>

#include <array>
#include <optional>

class QKeyEvent;
class QLineEdit;

namespace larkspur {

// A four-field IPv4 address entry. Typing "." or a third digit moves on to the next field, which
// is then taken whole (what is typed replaces it); the "." typed right after a third digit moved
// on is swallowed, so a dotted address typed over a stored one gives that address. Backspace in
// an empty field goes back to the one before; a finished field is held to its range. A pasted
// dotted address fills the fields from the one pasted into, or is refused whole.
class IPControl : public QWidget {
    Q_OBJECT
public:
    explicit IPControl(QWidget* parent = nullptr);
    ~IPControl() override;

    // The four fields, blank ones as 0: "10.0.0.1".
    QString Address() const;
    // Sets the address from a dotted text; a text without "." is ignored. Returns why a text
    // was refused (fewer than four parts, a part that is not 0 ... 255), or an empty text.
    QString setAddress(const QString& text);
    void ClearAddress();
    // Limits one field (0 ... 3), with the console's packing of the range.
    void SetFieldRange(int low, int high, int field);
    void SetFieldFocus(int field);
    bool IsBlank() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void constrainField(int field);
    void moveTo(int field);
    bool keyPressed(int field, const QKeyEvent& key);
    // Pastes the clipboard into `field`: true when the paste was taken care of here.
    bool paste(int field);
    void showContextMenu(int field, const QPoint& at);

    std::array<QLineEdit*, 4> m_fields{};
    std::array<FieldRange, 4> m_ranges{};
    // The field a third digit has just moved the caret into, where a "." is swallowed.
    std::optional<int> m_movedOnInto;
};

} // namespace larkspur
