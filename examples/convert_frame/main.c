/* Converts one picture: convert_frame FROM TO WIDTH HEIGHT <SOURCE >DESTINATION, as in
 *     convert_frame 2vuy BGRA 1920 1080 <frame.2vuy >frame.bgra
 * Both pictures are in Rec. 709, without gaps between rows. */
#include <KestrixPixelConversion.h>

#include <stdio.h>
#include <stdlib.h>

static int fail(const char* words)
{
    fprintf(stderr, "convert_frame: %s\n", words);
    return 1;
}

/* Describes a picture of the format called `name`, and gets memory for it. Returns 0 or 1. */
static int make_picture(kestrix_picture* picture, const char* name, long width, long height)
{
    kestrix_format_info format = {.struct_size = sizeof format};
    size_t row_bytes = 0;
    kestrix_status status = kestrix_format_by_name(name, &format);
    if (status == KESTRIX_OK)
        status = kestrix_row_bytes(format.code, (uint32_t)width, &row_bytes);
    if (status != KESTRIX_OK)
        return fail(kestrix_status_words(status));
    *picture = (kestrix_picture){.struct_size = sizeof *picture,
                                 .format = format.code,
                                 .colorspace = KESTRIX_COLORSPACE_709,
                                 .width = (uint32_t)width,
                                 .height = (uint32_t)height,
                                 .row_bytes = (ptrdiff_t)row_bytes,
                                 .size = row_bytes * (size_t)height};
    picture->bytes = malloc(picture->size);
    return picture->bytes ? 0 : fail("there is not enough memory");
}

int main(int argc, char** argv)
{
    char words[KESTRIX_WORDS_SIZE];
    kestrix_picture src;
    kestrix_picture dst;
    long width = argc == 5 ? strtol(argv[3], NULL, 10) : 0;
    long height = argc == 5 ? strtol(argv[4], NULL, 10) : 0;
    if (width < 1 || width > 32768 || height < 1 || height > 32768)
        return fail("usage: convert_frame FROM TO WIDTH HEIGHT <SOURCE >DESTINATION");
    if (make_picture(&src, argv[1], width, height) || make_picture(&dst, argv[2], width, height))
        return 1;
    if (kestrix_check(&src, &dst, 0, words, sizeof words) != KESTRIX_OK)
        return fail(words);

    if (fread(src.bytes, 1, src.size, stdin) != src.size)
        return fail("the source is too short");
    if (kestrix_convert(&src, &dst, 0) != KESTRIX_OK)
        return fail("the picture was not converted");
    if (fwrite(dst.bytes, 1, dst.size, stdout) != dst.size || fflush(stdout) != 0)
        return fail("the destination can't be written");
    free(src.bytes);
    free(dst.bytes);
    return 0;
}
