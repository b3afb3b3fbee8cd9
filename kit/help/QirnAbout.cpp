#include "kit/help/QirnAbout.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>

#include "kit/help/HelpPage.h"
#include "kit/help/KitWindow.h"

namespace qirn::QirnAbout {

namespace {

constexpr QSize kSize{380, 440};

QString& extraLines() {
    static QString theLines;
    return theLines;
}

QString tr(const char* text) {
    return QCoreApplication::translate("qirn::QirnAbout", text);
}

} // namespace

QString version() {
    return tr("Version %1 (%2)").arg(QStringLiteral(QIRN_VERSION), QStringLiteral(QIRN_BUILD));
}

void setExtraLines(const QString& lines) {
    extraLines() = lines;
}

void show() {
    static QPointer<KitWindow> theWindow;
    const QString name = QGuiApplication::applicationDisplayName();
    if (!theWindow) {
        auto* page = new HelpPage(nullptr);
        page->setObjectName(QStringLiteral("aboutPage"));
        page->setAccessibleName(tr("About %1").arg(name));
        page->showText(name, version() + u'\n' + tr("Made by Tessaly Works (Qirn)") +
                                 QStringLiteral("\nhttps://qirnpaint.example\n") + extraLines());
        theWindow = new KitWindow(tr("About %1").arg(name), kSize, page); // ends with the application
    }
    theWindow->bringUp();
}

} // namespace qirn::QirnAbout
