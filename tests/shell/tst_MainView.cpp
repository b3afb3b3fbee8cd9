#include "MainView.h"
#include "support/TestMain.h"
class tst_MainView : public QObject { Q_OBJECT };
QIRN_TEST(tst_MainView)
#include "tst_MainView.moc"
