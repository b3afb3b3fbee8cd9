#pragma once
#include <exception>

#include <QString>

namespace qirn {

/// A failure in words that a user is shown; the base of the typed errors of files and formats.
class UserFacingError : public std::exception {
public:
    explicit UserFacingError(QString description) : description_(std::move(description)) {}
    const QString& description() const { return description_; }
    const char* what() const noexcept override { return "an error with a description for the user"; }

private:
    QString description_;
};

} // namespace qirn
