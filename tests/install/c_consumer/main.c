/* The smallest program: converts one pixel of ARGB to BGRA. */
#include <KestrixPixelConversion.h>

int main(void)
{
    unsigned char pixel[4] = {1, 2, 3, 4};
    kestrix_picture src = {
        sizeof(src), KESTRIX_FORMAT_ARGB, KESTRIX_COLORSPACE_709, 1, 1, 4, pixel, 4};
    kestrix_picture dst = src;
    dst.format = KESTRIX_FORMAT_BGRA;
    if (kestrix_convert(&src, &dst, 0) != KESTRIX_OK)
        return 1;
    return pixel[0] == 4 && pixel[3] == 1 ? 0 : 1;
}
