// bench_vips IN OUT: six adjustments of about our basic steps' kind as a pipeline of libvips, which it works
// out lazily and in parallel, in linear floats, and a JPEG of quality 90.
#include <cstdio>
#include <vips/vips8>

namespace {

using vips::VImage;

VImage brightness(const VImage& image)
{
    return image.recomb(VImage::new_matrixv(3, 1, 0.2126, 0.7152, 0.0722));
}

VImage saturated(const VImage& image, double s)
{
    const double r = 0.2126 * (1 - s), g = 0.7152 * (1 - s), b = 0.0722 * (1 - s);
    return image.recomb(VImage::new_matrixv(3, 3, r + s, g, b, r, g + s, b, r, g, b + s));
}

/// The less colour, the more is added.
VImage vibrant(VImage image)
{
    const VImage r = image[0], g = image[1], b = image[2];
    VImage most = (r > g).ifthenelse(r, g), least = (r < g).ifthenelse(r, g);
    most = (most > b).ifthenelse(most, b);
    least = (least < b).ifthenelse(least, b);
    const VImage light = brightness(image);
    return light + (image - light) * ((most - least) / (most + 1e-4)).linear(-0.3, 1.3);
}

VImage lifted(const VImage& image)
{
    const VImage light = brightness(image), dark = light.linear(-1, 1);
    const VImage shadows = (dark * dark * dark * dark * light / (light + 0.05)).linear(1.2, 1);
    return image * (shadows - (light * light * light).linear(0.2, 0));
}

void render(const char* from, const char* to)
{
    VImage image = VImage::new_from_file(from, VImage::option()->set("access", "sequential"))
                       .colourspace(VIPS_INTERPRETATION_scRGB)
                       .linear(1.414, 0);
    image = vibrant(saturated(image, 1.15))
                .recomb(VImage::new_matrixv(3, 3, 1.05, -0.02, -0.01, -0.01, 1.0, 0.0, 0.0, 0.02, 0.92));
    lifted(image)
        .colourspace(VIPS_INTERPRETATION_sRGB)
        .sharpen(VImage::option()->set("sigma", 0.6))
        .jpegsave(to, VImage::option()->set("Q", 90)->set("strip", true));
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 3 || VIPS_INIT(arguments[0]))
        return 2;
    try {
        render(arguments[1], arguments[2]);
    } catch (const vips::VError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    vips_shutdown();
}
