#include "program/UserLanguage.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>

namespace qirn {

UserLanguage::UserLanguage(const QLocale& user, const QString& translations) {
    QLocale locale = user;
    if (words_.load(user, QStringLiteral("qirnpaint"), QStringLiteral("_"), translations)) {
        QCoreApplication::installTranslator(&words_);
        if (wordsOfQt_.load(user, QStringLiteral("qtbase"), QStringLiteral("_"),
                            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(&wordsOfQt_);
        QGuiApplication::setLayoutDirection(user.textDirection());
    } else if (user.zeroDigit() != QStringLiteral("0")) {
        locale = QLocale(QLocale::English); // beside English words other digits turn "1920 × 1080" round
    }
    locale.setNumberOptions(QLocale::OmitGroupSeparator); // sizes read as painters write them: 1920 × 1080
    QLocale::setDefault(locale);
}

} // namespace qirn
