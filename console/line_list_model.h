#pragma once

#include <QAbstractListModel>

namespace larkspur {

class LineSource;

// A list model over lines kept elsewhere. Rows are announced in batches by sync(), so a burst
// of logged lines costs the view one update; only the last line may change after it was shown.
class LineListModel : public QAbstractListModel {
    Q_OBJECT
public:
    explicit LineListModel(const LineSource& source, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // Announces the lines added or taken away since the last sync and refreshes the last one.
    // Returns whether lines were added.
    bool sync();
    // The source was emptied (and may have grown again): start over.
    void reset();

    // Characters in the longest line announced, for the width of the view.
    qsizetype longestLine() const { return m_longest; }

private:
    void measure(qsizetype from, qsizetype to);

    const LineSource& m_source;
    qsizetype m_announced = 0;
    qsizetype m_longest = 0;
};

} // namespace larkspur
