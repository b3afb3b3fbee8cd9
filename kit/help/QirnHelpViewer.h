#pragma once
#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;

namespace qirn {

class HelpPage;
class IconButton;

/// The manual: a search field over the list of the topics that it found, and the page of the one that is chosen.
class QirnHelpViewer : public QWidget {
    Q_OBJECT
public:
    explicit QirnHelpViewer(const QString& initialTopic = {}, QWidget* parent = nullptr);

    void goTo(const QString& topic); ///< Shows its page; an id that is not there changes nothing.
    const QString& currentTopic() const { return current_; }
    void topicsChanged(); ///< Reads the topics again.

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void search();
    void openFirst(); ///< What is meant, most of the time.
    void fill();      ///< The list, by the query.
    void choose();    ///< In the list, what the page shows.
    void open(const QString& topic);
    void followLink(const QString& topic);
    void goBack();
    void setColumnWidth();

    QWidget* column_;
    IconButton* back_;
    QLineEdit* search_;
    QListWidget* list_;
    QLabel* nothing_;
    HelpPage* page_;
    QTimer atRest_;    // single shot: the words have been typed
    QString current_;  // id
    QStringList past_; // ids of the pages whose links were followed, the last one last
};

} // namespace qirn
