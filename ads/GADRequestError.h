#pragma once

#include <QString>

// Why a banner request failed. The banner controllers do not look inside; the codes are
// for the log and for the client's own tests.
struct GADRequestError {
    enum Code {
        NotConfigured,   // no ad server or no valid ad unit in this build: nothing was sent
        NetworkError,    // connection refused, closed early, redirect loop, ...
        ServerError,     // an HTTP error status
        InvalidResponse, // not JSON, a field missing or of the wrong type, a bad address
        InvalidImage,    // the image does not decode, or is not PNG, JPEG or GIF
        Timeout,         // the whole request took longer than its time-out
        TooLarge,        // a body or an image over its size cap
    };

    Code code = NetworkError;
    QString localizedDescription;
};
