#include "images/FaceDetector.h"

#include "images/ImageLoader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <opencv2/saliency.hpp>

#include <algorithm>
#include <vector>

namespace FaceDetector {

namespace {

const char *const kCascade = "haarcascade_frontalface_alt2.xml";

// A face smaller than this share of the picture's short side is not looked for (the faces of a
// group photo of eight across a landscape picture are larger): the cascade's time goes mostly
// to the smallest windows.
constexpr double kSmallestFace = 0.06;
// Each scale the cascade looks at is this much larger than the one before.
constexpr double kScaleStep = 1.2;

// The long side of the copy the saliency map is made from.
constexpr int kSaliencySide = 160;
// The saliency map's cells that count as the subject: those this near to the strongest.
constexpr float kSalientShare = 0.6f;

cv::Mat wrapped(const QImage &grey)
{
    return cv::Mat(grey.height(), grey.width(), CV_8UC1, const_cast<uchar *>(grey.constBits()),
                   size_t(grey.bytesPerLine()));
}

QRectF normalised(const cv::Rect &rect, const cv::Size &size)
{
    return QRectF(double(rect.x) / size.width, double(rect.y) / size.height, double(rect.width) / size.width,
                  double(rect.height) / size.height);
}

cv::CascadeClassifier *classifier()
{
    thread_local cv::CascadeClassifier faces;
    thread_local bool tried = false;
    if (!tried) {
        tried = true;
        const QString path = cascadePath();
        if (!path.isEmpty())
            faces.load(QFile::encodeName(path).toStdString());
    }
    return faces.empty() ? nullptr : &faces;
}

QList<QRectF> facesIn(const cv::Mat &grey, cv::CascadeClassifier &faces)
{
    // Contrast evened out locally: a flat sky or wall that fills most of the picture does not
    // squeeze the face's shades as a global equalisation would.
    cv::Mat equalised;
    cv::createCLAHE(2.0, cv::Size(8, 8))->apply(grey, equalised);
    const int smallest = std::max(12, int(kSmallestFace * std::min(grey.cols, grey.rows)));
    std::vector<cv::Rect> found;
    faces.detectMultiScale(equalised, found, kScaleStep, 4, 0, cv::Size(smallest, smallest));
    std::sort(found.begin(), found.end(),
              [](const cv::Rect &a, const cv::Rect &b) { return a.area() > b.area(); });
    QList<QRectF> rects;
    for (const cv::Rect &face : found)
        rects << normalised(face, grey.size());
    return rects;
}

// The bounding box of the salient region that holds the map's strongest point; empty when the
// picture has no region that stands out.
QRectF salientIn(const cv::Mat &grey)
{
    // The residual is found at 64 x 64 whatever the input; a small copy keeps the map (which
    // comes back at the input's size) and its smoothing cheap.
    cv::Mat small;
    const double factor = double(kSaliencySide) / std::max(grey.cols, grey.rows);
    cv::resize(grey, small, cv::Size(), std::min(1.0, factor), std::min(1.0, factor), cv::INTER_AREA);
    cv::Ptr<cv::saliency::StaticSaliencySpectralResidual> saliency =
        cv::saliency::StaticSaliencySpectralResidual::create();
    cv::Mat map;
    if (!saliency->computeSaliency(small, map) || map.empty())
        return QRectF();
    map.convertTo(map, CV_32F);
    cv::GaussianBlur(map, map, cv::Size(), std::max(1.0, map.cols / 40.0));
    double lowest = 0, strongest = 0;
    cv::Point peak;
    cv::minMaxLoc(map, &lowest, &strongest, nullptr, &peak);
    const cv::Scalar mean = cv::mean(map);
    if (strongest <= 0 || strongest < 2 * mean[0])
        return QRectF(); // nothing stands out of a flat picture
    cv::Mat salient;
    cv::threshold(map, salient, kSalientShare * strongest, 255, cv::THRESH_BINARY);
    salient.convertTo(salient, CV_8U);
    cv::Mat labels;
    cv::Mat stats;
    cv::Mat centroids;
    cv::connectedComponentsWithStats(salient, labels, stats, centroids);
    const int label = labels.at<int>(peak);
    if (label <= 0)
        return QRectF();
    const cv::Rect box(stats.at<int>(label, cv::CC_STAT_LEFT), stats.at<int>(label, cv::CC_STAT_TOP),
                       stats.at<int>(label, cv::CC_STAT_WIDTH), stats.at<int>(label, cv::CC_STAT_HEIGHT));
    return normalised(box, map.size());
}

} // namespace

QString cascadePath()
{
    QStringList folders;
    if (QCoreApplication::instance())
        folders << QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("haarcascades"));
    folders << QStringLiteral("/usr/share/opencv4/haarcascades")
            << QStringLiteral("/usr/share/opencv/haarcascades");
    for (const QString &folder : folders) {
        const QString path = QDir(folder).filePath(QLatin1String(kCascade));
        if (QFileInfo(path).isFile())
            return path;
    }
    return QString();
}

PictureSubjects detect(const QImage &image)
{
    PictureSubjects subjects;
    if (image.isNull())
        return subjects;
    QImage grey = image;
    if (std::max(grey.width(), grey.height()) > kMaxSide)
        grey = grey.scaled(kMaxSide, kMaxSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    grey = std::move(grey).convertToFormat(QImage::Format_Grayscale8);
    cv::CascadeClassifier *faces = classifier();
    if (grey.isNull() || !faces)
        return subjects;
    try {
        const cv::Mat pixels = wrapped(grey);
        subjects.faces = facesIn(pixels, *faces);
        if (subjects.faces.isEmpty())
            subjects.salient = salientIn(pixels);
        subjects.detected = true;
    } catch (const cv::Exception &) {
        subjects = PictureSubjects(); // reported as not detected; the picture adds as ever
    }
    return subjects;
}

PictureSubjects detectFile(const QString &path) { return detect(ImageLoader::load(path, kMaxSide)); }

} // namespace FaceDetector
