// Digests by the published vectors, and Base64.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "support/PdfBuilder.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/Sha.h"

namespace {

constexpr std::size_t kDigestBytes[] = {20, 32, 48, 64};

std::string hex(std::string_view bytes) {
    std::string out;
    for (const char byte : bytes) {
        out += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4U];
        out += "0123456789abcdef"[static_cast<unsigned char>(byte) & 0xfU];
    }
    return out;
}

std::string finish(IMessageDigest& sha, int type) {
    std::string out(65, '~');
    sha.FinalDigest(out.data());
    const std::size_t size = kDigestBytes[type < 0 || type > 3 ? 0 : type];
    EXPECT_EQ(out.substr(size), std::string(65 - size, '~')) << "written beyond the digest";
    return hex(out.substr(0, size));
}

std::string digest(int type, std::string_view message, std::size_t piece = 1 << 30) {
    CSHA sha(type);
    for (std::string_view rest = message; !rest.empty(); rest.remove_prefix(std::min(piece, rest.size()))) {
        sha.AddData(rest.data(), static_cast<int>(std::min(piece, rest.size())));
    }
    return finish(sha, type);
}

struct Vector {
    int type;
    std::string message;
    std::string digest;
};

// FIPS 180-4 examples (NIST "SHA examples", RFC 6234 section 8.5).
const std::string kTwoBlocks = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
const std::string kTwoWideBlocks =
    "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu";
const Vector kVectors[] = {
    {0, "abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
    {0, "", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
    {0, kTwoBlocks, "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
    {0, std::string(1'000'000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
    {1, "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {1, "", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    {1, kTwoBlocks, "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    {1, std::string(1'000'000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    {2, "abc", "cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134c825a7"},
    {2, kTwoWideBlocks,
     "09330c33f71147e83d192fc782cd1b4753111b173b3b05d22fa08086e3b0f712fcc7c71a557e2db966c3e9fa91746039"},
    {3, "abc",
     "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
     "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f"},
    {3, kTwoWideBlocks,
     "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
     "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909"},
    {3, std::string(1'000'000, 'a'),
     "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
     "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b"},
};

TEST(Sha, PublishedVectorsWholeAndInPieces) {
    for (const Vector& v : kVectors) {
        for (const std::size_t piece : {1U, 3U, 63U, 64U, 65U, 127U, 128U, 129U, 1U << 30U}) {
            EXPECT_EQ(digest(v.type, v.message, piece), v.digest) << v.type << ' ' << v.message.substr(0, 60) << piece;
        }
    }
}

// Around every length at which padding needs one block more.
TEST(Sha, PiecesOfAllSizesAtAllLengths) {
    const std::string message(300, 'x');
    for (int type = 0; type <= 3; ++type) {
        for (std::size_t length = 0; length <= message.size(); ++length) {
            const std::string_view part = std::string_view(message).substr(0, length);
            const std::string whole = digest(type, part);
            CSHA sha(type);
            for (std::size_t at = 0, piece = 1; at < length; at += piece++) {
                sha.AddData(part.data() + at, static_cast<int>(std::min(piece, length - at)));
            }
            EXPECT_EQ(finish(sha, type), whole) << type << ' ' << length;
        }
    }
}

TEST(Sha, SelectorsAndNewMessages) {
    for (const int type : {-1, 4, 7}) EXPECT_EQ(digest(type, "abc"), kVectors[0].digest);
    CSHA sha(0);
    sha.AddData("abc", 3);
    EXPECT_EQ(finish(sha, 0), kVectors[0].digest);
    EXPECT_EQ(finish(sha, 0), kVectors[1].digest) << "the object starts anew";
    sha.AddData("some", 4);
    sha.Reset();
    sha.AddData(nullptr, 5);
    sha.AddData("abc", -1);
    const std::unique_ptr<IMessageDigest> copy = std::make_unique<CSHA>(sha);
    copy->AddData("abc", 3);
    EXPECT_EQ(finish(*copy, 0), kVectors[0].digest);
    // Rotations by 1, 8 and 19, 61 with shifts by 7 and 6, by hand.
    EXPECT_EQ(CSHA::SIG0({0x80}).value, 0x8000000000000041U);
    EXPECT_EQ(CSHA::SIG1({0x40}).value, 0x0008000000000201U);
}

std::string decoded(const std::string& text) {
    const auto bytes = base64_decode(text);
    return {bytes.begin(), bytes.end()};
}

TEST(Base64, BothWays) {
    // RFC 4648 section 10
    const std::pair<std::string, std::string> rows[] = {{"", ""},
                                                        {"f", "Zg=="},
                                                        {"fo", "Zm8="},
                                                        {"foo", "Zm9v"},
                                                        {"foob", "Zm9vYg=="},
                                                        {"fooba", "Zm9vYmE="},
                                                        {"foobar", "Zm9vYmFy"},
                                                        {"Ma", "TWE="},
                                                        {std::string("\0\xff\xfb\xef", 4), "AP/77w=="}};
    for (const auto& [bytes, text] : rows) {
        const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
        EXPECT_EQ(base64_encode(data, static_cast<unsigned>(bytes.size())), text);
        EXPECT_EQ(decoded(text), bytes);
    }
    const std::pair<std::string, std::string> ends[] = {
        {"TW\nFu", "M"}, {"=TWE", ""}, {"T", ""}, {"TW", "M"}, {"TWE", "Ma"}, {"TWFu TWFu", "Man"}, {"T\xff", ""}};
    for (const auto& [text, bytes] : ends) EXPECT_EQ(decoded(text), bytes) << text;
    EXPECT_EQ(base64_encode(nullptr, 3), "");
}

TEST(Deflate, Inflates) {
    std::string packed = varnpdf::test::deflated("some text, some text");
    const auto inflate = [&](unsigned long room, std::string& out) {
        out.assign(64, '~');
        unsigned long length = room;
        const int status =
            CPdfHelper::Deflate(reinterpret_cast<unsigned char*>(packed.data()), static_cast<unsigned>(packed.size()),
                                reinterpret_cast<unsigned char*>(out.data()), &length);
        EXPECT_EQ(out.substr(room), std::string(64 - room, '~')) << "written beyond the room";
        out.resize(length);
        return status;
    };
    std::string out;
    EXPECT_EQ(inflate(20, out), 0);
    EXPECT_EQ(out, "some text, some text");
    EXPECT_EQ(inflate(19, out), -5);
    packed[0] = 'x' + 1;
    EXPECT_EQ(inflate(20, out), -3);
    EXPECT_EQ(CPdfHelper::Deflate(nullptr, 0, nullptr, nullptr), -2);
}

}  // namespace
