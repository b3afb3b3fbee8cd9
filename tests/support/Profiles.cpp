#include "support/Profiles.h"

#include <QColorSpace>

#include <lcms2.h>

namespace qirn::test {

namespace {

QByteArray saved(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    QByteArray bytes(static_cast<qsizetype>(size), '\0');
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

/// Each ink lets through its share of red, green and blue; the result as Lab.
cmsInt32Number inkToLab(const cmsUInt16Number in[], cmsUInt16Number out[], void* toLab) {
    const double inks[4][3] = {{kPressCyan[0] / 255.0, kPressCyan[1] / 255.0, kPressCyan[2] / 255.0},
                               {0.8, 0.1, 0.5},
                               {1, 0.9, 0.1},
                               {0, 0, 0}};
    cmsUInt16Number rgb[3];
    for (int c = 0; c < 3; ++c) {
        double light = 1;
        for (int i = 0; i < 4; ++i) light *= 1 - in[i] / 65535.0 * (1 - inks[i][c]);
        rgb[c] = static_cast<cmsUInt16Number>(light * 65535 + 0.5);
    }
    cmsDoTransform(toLab, rgb, out, 1);
    return TRUE;
}

} // namespace

QByteArray srgbProfile() {
    // As files have it: the curve as a table, a primary rounded. Some colors come out a step off.
    constexpr cmsUInt32Number kEntries = 1024;
    const double parameters[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    cmsToneCurve* const formula = cmsBuildParametricToneCurve(nullptr, 4, parameters);
    cmsUInt16Number table[kEntries];
    for (cmsUInt32Number i = 0; i < kEntries; ++i)
        table[i] = cmsEvalToneCurve16(formula, static_cast<cmsUInt16Number>(i * 65535 / (kEntries - 1)));
    cmsFreeToneCurve(formula);
    cmsToneCurve* const curve = cmsBuildTabulatedToneCurve16(nullptr, kEntries, table);
    cmsToneCurve* const curves[3] = {curve, curve, curve};
    const cmsCIExyY d65{0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries{{0.64, 0.33, 1}, {0.2999, 0.6, 1}, {0.15, 0.06, 1}};
    QByteArray bytes = saved(cmsCreateRGBProfile(&d65, &primaries, curves));
    cmsFreeToneCurve(curve);
    return bytes;
}

QByteArray displayP3Profile() {
    return QColorSpace(QColorSpace::DisplayP3).iccProfile();
}

QByteArray adobeRgbProfile() {
    return QColorSpace(QColorSpace::AdobeRgb).iccProfile();
}

QByteArray grayProfile(double gamma) {
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    QByteArray bytes = saved(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    return bytes;
}

QByteArray pressProfile() {
    const cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    const cmsHPROFILE lab = cmsCreateLab2Profile(nullptr);
    const cmsHTRANSFORM toLab =
        cmsCreateTransform(srgb, TYPE_RGB_16, lab, TYPE_LabV2_16, INTENT_RELATIVE_COLORIMETRIC, 0);
    const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.4);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 4, 3);
    cmsStage* table = cmsStageAllocCLut16bit(nullptr, 5, 4, 3, nullptr);
    cmsStageSampleCLut16bit(table, inkToLab, toLab, 0);
    cmsPipelineInsertStage(pipeline, cmsAT_BEGIN, table);
    cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
    cmsWriteTag(profile, cmsSigMediaWhitePointTag, cmsD50_XYZ());
    cmsPipelineFree(pipeline);
    cmsDeleteTransform(toLab);
    cmsCloseProfile(srgb);
    cmsCloseProfile(lab);
    return saved(profile);
}

std::vector<uint8_t> convertedByTheLibrary(const QByteArray& icc, const std::vector<uint16_t>& samples,
                                           int channels) {
    const auto source = cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size()));
    const auto target = cmsCreate_sRGBProfile();
    const auto transform = cmsCreateTransform(source, channels == 1 ? TYPE_GRAY_16 : TYPE_RGB_16, target,
                                              TYPE_RGBA_8, INTENT_RELATIVE_COLORIMETRIC,
                                              cmsFLAGS_NOOPTIMIZE | cmsFLAGS_BLACKPOINTCOMPENSATION);
    const std::size_t count = samples.size() / static_cast<std::size_t>(channels);
    std::vector<uint8_t> rgba(count * 4, 255);
    cmsDoTransform(transform, samples.data(), rgba.data(), static_cast<cmsUInt32Number>(count));
    cmsDeleteTransform(transform);
    cmsCloseProfile(target);
    cmsCloseProfile(source);
    return rgba;
}

} // namespace qirn::test
