#pragma once
#include <set>
#include <utility>

#include <QTranslator>

namespace qirn {

/// Stands for a language whose words are half as long again: every text that the program asks for comes back with accents and
/// doubled vowels, and what stands for something else in it stays: places for values, keys, marks of the manual.
class PseudoTexts : public QTranslator {
public:
    using Text = std::pair<QByteArray, QByteArray>; ///< Context and source.

    QString translate(const char* context, const char* source, const char* disambiguation = nullptr,
                      int n = -1) const override;
    bool isEmpty() const override { return false; }

    /// What has been asked for.
    const std::set<Text>& asked() const { return asked_; }
    /// Of that, what a file of `lupdate` does not have: no translator would ever see it.
    QStringList missingIn(const QString& tsFile) const;

private:
    mutable std::set<Text> asked_;
};

/// The text at 140% of its length.
QString pseudo(const QString& text);

} // namespace qirn
