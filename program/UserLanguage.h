#pragma once
#include <QTranslator>

class QLocale;
class QString;

namespace qirn {

/// The language of the window: that of the user where there is a translation, with the side that it is read from and its
/// digits; else English, with the user's way to write numbers unless that takes other digits. Made after the application
/// object and before the first widget; its words last as long as it lives.
class UserLanguage {
public:
    /// The folder holds qirnpaint_LANGUAGE.qm; it need not be there.
    UserLanguage(const QLocale& user, const QString& translations);

private:
    QTranslator words_, wordsOfQt_;
};

} // namespace qirn
