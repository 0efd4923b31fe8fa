// Entry of test programs with windows: drawn offscreen, in one style and language everywhere.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLocale>
#include <QStyleFactory>

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QLocale::setDefault(QLocale::c());
  return RUN_ALL_TESTS();
}
