#include "platform/linux/images/PictureRows.h"

#include "platform/ExifPicture.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio> // jpeglib.h takes FILE for granted
#include <cstdlib>
#include <cstring>
#include <jerror.h>
#include <jpeglib.h>

namespace korvo {

namespace {

constexpr int exifMarker = JPEG_APP0 + 1, profileMarker = JPEG_APP0 + 2;
constexpr unsigned longestMarker = 0xFFFF;
/// Sets of scans beyond any in use: a small file may hold thousands, each over the whole picture.
constexpr int mostScans = 100;
/// Two bits a block, and room for files that are cut off.
constexpr std::uint64_t jpegPixelsInByte = 4096;
/// What the markers before the picture may hold in memory. Far beyond any that a camera or program writes.
constexpr std::size_t mostMarkerBytes = std::size_t(64) << 20;
/// What each counts for beside its length: the library walks past all of them to add one.
constexpr std::size_t markerCost = 16 << 10;
/// A progressive picture's coefficients are kept until the last scan.
constexpr std::int64_t mostCoefficientBytes = std::int64_t(1) << 31;

/// A JPEG stream in a part of a file, decoded by libjpeg-turbo. The library's errors are jumps: each function
/// that calls it sets the target first, and has no objects that a jump would pass over.
class JpegRows : public PictureRows {
public:
    JpegRows(PictureFile& file, std::uint64_t offset, std::uint64_t length, const OpenOptions& options)
        : file_(file), offset_(offset),
          end_(offset + std::min(length, file.size() - std::min(offset, file.size()))), stop_(options.stop)
    {
        begin(options);
        takeMarkers();
        takeProfile();
    }

    void read(std::uint8_t* row) override
    {
        if (isBroken_ || !readRow(row))
            fill(row);
        else if (inverts_)
            std::transform(
                row, row + rowBytes(), row, [](std::uint8_t ink) { return std::uint8_t(255 - ink); });
        if (errors_.num_warnings > 0 && info_.note.empty())
            info_.note = "the file is damaged: " + message_;
    }

private:
    static JpegRows& of(j_common_ptr jpeg) { return *static_cast<JpegRows*>(jpeg->client_data); }

    void connect()
    {
        jpeg_.err = jpeg_std_error(&errors_);
        errors_.error_exit = [](j_common_ptr jpeg) {
            of(jpeg).keepMessage(jpeg);
            of(jpeg).which_ = caseOf(jpeg->err->msg_code);
            std::longjmp(of(jpeg).jump_, 1);
        };
        errors_.emit_message = [](j_common_ptr jpeg, int level) {
            if (level < 0 && jpeg->err->num_warnings++ == 0)
                of(jpeg).keepMessage(jpeg);
        };
        jpeg_.client_data = this;
        jpeg_create_decompress(&jpeg_);
        jpeg_.client_data = this;
        source_.init_source = [](j_decompress_ptr) {};
        source_.fill_input_buffer
            = [](j_decompress_ptr jpeg) -> boolean { return of(j_common_ptr(jpeg)).fillBuffer(); };
        source_.skip_input_data
            = [](j_decompress_ptr jpeg, long count) { of(j_common_ptr(jpeg)).skip(count); };
        source_.resync_to_restart = jpeg_resync_to_restart;
        source_.term_source = [](j_decompress_ptr) {};
        jpeg_.src = &source_;
        progress_.progress_monitor = [](j_common_ptr jpeg) {
            if (of(jpeg).stop_.stop_requested())
                of(jpeg).giveUp(ImageError::Case::stopped, "was stopped");
            if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > mostScans)
                of(jpeg).giveUp(ImageError::Case::damaged, "it has too many scans");
        };
    }

    /// Says what the jump was for.
    [[noreturn]] void fail() const
    {
        file_.fail(which_,
            which_ == ImageError::Case::damaged           ? "the file is damaged: " + message_
                : which_ == ImageError::Case::unsupported ? "this kind of JPEG cannot be decoded: " + message_
                                                          : message_);
    }

    static ImageError::Case caseOf(int code)
    {
        switch (code) {
        case JERR_SOF_UNSUPPORTED:
        case JERR_BAD_PRECISION:
        case JERR_CONVERSION_NOTIMPL:
        case JERR_NOT_COMPILED:
            return ImageError::Case::unsupported;
        case JERR_OUT_OF_MEMORY:
            return ImageError::Case::memory;
        default:
            return ImageError::Case::damaged;
        }
    }

    void begin(const OpenOptions& options)
    {
        if (setjmp(jump_))
            fail();
        connect();
        boundMarkers();
        jpeg_save_markers(&jpeg_, exifMarker, longestMarker);
        jpeg_save_markers(&jpeg_, profileMarker, longestMarker);
        jpeg_read_header(&jpeg_, TRUE);
        jpeg_.mem->alloc_large = allocate_;
        check(options.mostMemory);
        chooseColors();
        chooseScale(options.size);
        jpeg_.progress = &progress_;
        jpeg_start_decompress(&jpeg_);
        info_.width = static_cast<int>(jpeg_.output_width);
        info_.height = static_cast<int>(jpeg_.output_height);
    }

    /// The library keeps every marker, however many there are, and a file of nothing else would take minutes
    /// and gigabytes. Before the pixels, nothing else is large.
    void boundMarkers()
    {
        allocate_ = jpeg_.mem->alloc_large;
        jpeg_.mem->alloc_large = [](j_common_ptr jpeg, int pool, std::size_t size) {
            auto& self = of(jpeg);
            self.markerBytes_ += size + markerCost;
            if (self.markerBytes_ > mostMarkerBytes)
                self.giveUp(ImageError::Case::damaged, "its markers have no end");
            return self.allocate_(jpeg, pool, size);
        };
    }

    void check(std::int64_t mostMemory)
    {
        info_.fullWidth = static_cast<int>(jpeg_.image_width);
        info_.fullHeight = static_cast<int>(jpeg_.image_height);
        checkSize(file_, info_.fullWidth, info_.fullHeight);
        checkContents(file_, info_.fullWidth, info_.fullHeight, jpegPixelsInByte);
        const auto coefficients = std::int64_t(2) * info_.fullWidth * info_.fullHeight * jpeg_.num_components;
        if (jpeg_has_multiple_scans(&jpeg_) && coefficients > mostCoefficientBytes)
            file_.fail(ImageError::Case::tooLarge,
                "its " + std::to_string(info_.fullWidth) + " × " + std::to_string(info_.fullHeight)
                    + " pixels are more than can be decoded of a progressive JPEG");
        if (jpeg_has_multiple_scans(&jpeg_) && coefficients > mostMemory)
            file_.fail(ImageError::Case::memory, notEnoughMemory);
    }

    void chooseColors()
    {
        using Model = RowFormat::Model;
        using Alpha = RowFormat::Alpha;
        switch (jpeg_.jpeg_color_space) {
        case JCS_GRAYSCALE:
            info_.format = {Model::grey, Alpha::none};
            jpeg_.out_color_space = JCS_GRAYSCALE;
            break;
        case JCS_CMYK:
        case JCS_YCCK:
            info_.format = {Model::cmyk, Alpha::none};
            jpeg_.out_color_space = JCS_CMYK;
            inverts_ = jpeg_.saw_Adobe_marker;
            break;
        default:
            jpeg_.out_color_space = JCS_EXT_RGBA;
            break;
        }
    }

    /// In the transform itself, by eighths: the smallest that is large enough.
    void chooseScale(int size)
    {
        const int longer = std::max(info_.fullWidth, info_.fullHeight);
        jpeg_.scale_denom = 8;
        jpeg_.scale_num = 8;
        for (unsigned eighths = 1; size > 0 && eighths < 8; ++eighths)
            if ((std::int64_t(longer) * eighths + 7) / 8 >= size) {
                jpeg_.scale_num = eighths;
                break;
            }
    }

    /// Objects may live here: nothing below jumps.
    void takeMarkers()
    {
        for (auto* marker = jpeg_.marker_list; marker; marker = marker->next) {
            const Bytes bytes(marker->data, marker->data_length);
            if (marker->marker == exifMarker && bytes.startsWith(std::string_view("Exif\0\0", 6))) {
                const auto exif = exifPicture(bytes.from(6));
                info_.orientation = exif.orientation;
                info_.isAdobeRGB = exif.isAdobeRGB;
                break;
            }
        }
    }

    void takeProfile()
    {
        JOCTET* profile = nullptr;
        unsigned length = 0;
        if (setjmp(jump_))
            fail();
        if (jpeg_read_icc_profile(&jpeg_, &profile, &length))
            info_.profile.assign(profile, profile + length);
        std::free(profile);
    }

    bool readRow(std::uint8_t* row)
    {
        if (setjmp(jump_)) {
            if (which_ == ImageError::Case::stopped)
                fail();
            isBroken_ = true;
            errors_.num_warnings = 1;
            return false;
        }
        JSAMPROW rows[] = {row};
        return jpeg_read_scanlines(&jpeg_, rows, 1) == 1;
    }

    boolean fillBuffer()
    {
        static constexpr JOCTET end[] = {0xFF, JPEG_EOI};
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(buffer_.size(), end_ - offset_));
        const auto count = file_.readSafely(offset_, buffer_.data(), wanted);
        offset_ += count;
        source_.next_input_byte = count > 0 ? buffer_.data() : end;
        source_.bytes_in_buffer = count > 0 ? count : sizeof end;
        if (count == 0)
            warn("it ends too early");
        return TRUE;
    }

    void skip(long count)
    {
        const auto wanted = static_cast<std::uint64_t>(std::max(count, 0L));
        const auto buffered = std::min<std::uint64_t>(wanted, source_.bytes_in_buffer);
        source_.next_input_byte += buffered;
        source_.bytes_in_buffer -= static_cast<std::size_t>(buffered);
        offset_ += std::min(wanted - buffered, end_ - offset_);
    }

    void keepMessage(j_common_ptr jpeg)
    {
        if (!message_.empty())
            return;
        std::array<char, JMSG_LENGTH_MAX> text{};
        errors_.format_message(jpeg, text.data());
        message_ = text.data();
    }
    void warn(const char* text)
    {
        if (message_.empty())
            message_ = text;
        ++errors_.num_warnings;
    }
    [[noreturn]] void giveUp(ImageError::Case which, const char* text)
    {
        which_ = which;
        message_ = text;
        std::longjmp(jump_, 1);
    }

    PictureFile& file_;
    std::uint64_t offset_, end_;
    struct Handle {
        Handle() = default;
        ~Handle() { jpeg_destroy_decompress(&jpeg); }
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;
        jpeg_decompress_struct jpeg{};
    } handle_;
    jpeg_decompress_struct& jpeg_ = handle_.jpeg;
    jpeg_error_mgr errors_{};
    jpeg_source_mgr source_{};
    jpeg_progress_mgr progress_{};
    decltype(jpeg_memory_mgr::alloc_large) allocate_ = nullptr; ///< the library's own
    std::size_t markerBytes_ = 0;
    std::jmp_buf jump_{};
    std::string message_;
    ImageError::Case which_ = ImageError::Case::damaged; ///< of the message
    std::stop_token stop_;
    std::array<JOCTET, 128 << 10> buffer_;
    bool inverts_ = false;
    bool isBroken_ = false;
};

} // namespace

std::unique_ptr<PictureRows> openJpegAt(
    PictureFile& file, std::uint64_t offset, std::uint64_t length, const OpenOptions& options)
{
    return std::make_unique<JpegRows>(file, offset, length, options);
}

std::unique_ptr<PictureRows> openJpeg(PictureFile& file, const OpenOptions& options)
{
    return openJpegAt(file, 0, file.size(), options);
}

} // namespace korvo
