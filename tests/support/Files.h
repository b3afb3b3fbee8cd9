#pragma once
#include <QByteArray>
#include <QFile>
#include <QtTest>

namespace qirn::test {

/// The content of a file; empty when it cannot be read.
inline QByteArray bytesAt(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace qirn::test
