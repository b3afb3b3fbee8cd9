#pragma once
#include <exception>

#include <QString>

namespace qirn {

/// An error that a user may be told of, in whole sentences. Each file layer has its own type; a command that
/// turns any of them into an alert catches this one.
class DescribedError : public std::exception {
public:
    QString description() const { return description_; }
    const char* what() const noexcept override { return utf8_.constData(); }

protected:
    explicit DescribedError(QString description)
        : description_(std::move(description)),
          utf8_(description_.toUtf8()) {}

private:
    QString description_;
    QByteArray utf8_;
};

} // namespace qirn
