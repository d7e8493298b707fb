// Texts of copying the package onto a TF card: the choice of the card, the copy and its
// verification, and what can go wrong.
#include "ui/AppStrings.h"

namespace Str {

QString copyToCardButton() { return pick("复制", "Copy"); }
QString copyToCardMainButton() { return pick("复制到 TF 卡…", "Copy to TF Card…"); }
QString copyToCardTip()
{
    return pick("把播放包 vl_play 复制到 TF 卡的根目录，并逐个文件校验。",
                "Copies the package vl_play to the root of a TF card and verifies every file.");
}
QString copyToCardTitle() { return pick("复制到 TF 卡", "Copy to TF Card"); }

QString copyToCardIntro(const QString &packageDir, int files, const QString &size)
{
    return pick("选择要复制到的 TF 卡。播放包 %1（%2 个文件，%3）将复制到卡的根目录。",
                "Choose the TF card to copy to. The package %1 (%2 files, %3) goes to the card's root.")
        .arg(packageDir, QString::number(files), size);
}

QString refreshCards() { return pick("刷新", "Refresh"); }
QString close() { return pick("关闭", "Close"); }
QString noCardFound()
{
    return pick("没有找到可写入的 TF 卡。请插入卡后点击“刷新”。",
                "No writable TF card was found. Insert the card, then click Refresh.");
}

QString cardVolumeItem(const QString &name, const QString &root, const QString &fileSystem,
                       const QString &free, bool fits)
{
    const QString item =
        pick("%1（%2）— %3 — 可用 %4", "%1 (%2) — %3 — %4 free").arg(name, root, fileSystem, free);
    return fits ? item : item + pick(" — 空间不足", " — too small");
}

QString cardFileSystemWarning(const QString &fileSystem)
{
    return pick("⚠ 此卡的文件系统是 %1。相框只能读取 FAT32 或 exFAT 格式的卡，请先在电脑上格式化。",
                "⚠ This card's file system is %1. The frame reads only FAT32 or exFAT cards; format the "
                "card on your computer first.")
        .arg(fileSystem.isEmpty() ? QStringLiteral("?") : fileSystem);
}

QString cardFileSystemUnknown(const QString &mountType)
{
    return pick("⚠ 无法判断此卡的文件系统（系统只报告为 %1）。相框只能读取 FAT32 或 exFAT 格式的卡。",
                "⚠ This card's file system could not be told (the system reports only %1). The frame reads "
                "only FAT32 or exFAT cards.")
        .arg(mountType.isEmpty() ? QStringLiteral("?") : mountType);
}

QString cardReplaceQuestion(const QString &target)
{
    return pick(
               "卡上已有 vl_play 文件夹:\n%1\n\n用此播放包替换它吗？复制并校验完成之前，原有内容保持不变。",
               "The card already holds a vl_play folder:\n%1\n\nReplace it with this package? It stays as it "
               "is until the copy is complete and verified.")
        .arg(target);
}

QString cardCopying() { return pick("正在复制…", "Copying…"); }
QString cardVerifying() { return pick("正在校验…", "Verifying…"); }

QString cardCopyDone(int files, const QString &size, const QString &target)
{
    return pick("已复制 %1 个文件（%2），并从卡上读回校验:\n%3\n\n现在可以安全弹出 TF 卡，插入相框。",
                "%1 files (%2) copied and verified on the card:\n%3\n\nEject the TF card safely, then put it "
                "into the frame.")
        .arg(QString::number(files), size, target);
}

QString cardCopyCancelled() { return pick("复制已取消。", "The copy was cancelled."); }

QString cardCannotWrite(const QString &root)
{
    return pick("无法写入此卡:\n%1", "The card cannot be written:\n%1").arg(root);
}

QString cardGone(const QString &root)
{
    return pick("卡 %1 已无法读写，可能已被拔出。",
                "The card %1 can no longer be read or written; it may have been pulled out.")
        .arg(root);
}

QString cardCopyFileFailed(const QString &name, const QString &reason)
{
    return pick("复制 %1 失败: %2", "Copying %1 failed: %2").arg(name, reason);
}

QString cardVerifyFailed(const QString &name)
{
    return pick("校验失败：卡上的 %1 与播放包中的不同。卡可能已损坏或被拔出。",
                "Verification failed: %1 on the card differs from the package. The card may be faulty or was "
                "removed.")
        .arg(name);
}

QString cardCannotReplace(const QString &target)
{
    return pick("无法替换卡上已有的 vl_play:\n%1\n\n它保持不变，卡上没有留下此次复制的任何内容。",
                "The vl_play already on the card cannot be replaced:\n%1\n\nIt was left as it was, and "
                "nothing "
                "of this copy was left on the card.")
        .arg(target);
}

QString noPackageToCopy()
{
    return pick("保存位置中还没有播放包 vl_play。请先开始处理。",
                "There is no package vl_play in the save location yet. Start processing first.");
}

QString cardBusy()
{
    return pick("正在处理图片，请在处理完成后再复制播放包。",
                "Images are being processed. Copy the package when processing has finished.");
}

QString leftoverOldRestored(const QString &old, const QString &target)
{
    return pick("↺ 发现上次中断留下的旧播放包 %1，且没有 %2：已将它恢复为 %2。",
                "↺ Found the earlier package %1 left by an interrupted run, and no %2: put it back as %2.")
        .arg(old, target);
}

QString leftoverOldNotRestored(const QString &old)
{
    return pick("⚠ 发现上次中断留下的旧播放包，但无法恢复它：%1",
                "⚠ Found the earlier package left by an interrupted run, but could not put it back: %1")
        .arg(old);
}

QString leftoverOldRemoved(const QString &old)
{
    return pick("↺ 发现上次中断留下的旧播放包文件夹 %1：已删除。",
                "↺ Found an old package folder %1 left by an interrupted run: removed it.")
        .arg(old);
}

QString leftoverPartialRemoved(const QString &partial)
{
    return pick("↺ 发现上次中断留下的未完成文件夹 %1：已删除。",
                "↺ Found an unfinished folder %1 left by an interrupted run: removed it.")
        .arg(partial);
}

QString leftoverNotRemoved(const QString &folder)
{
    return pick("⚠ 发现上次中断留下的文件夹，但无法删除：%1",
                "⚠ Found a folder left by an interrupted run, but could not remove it: %1")
        .arg(folder);
}

QString cardNothingLeft()
{
    return pick("卡上没有留下此次复制的任何内容；原有的 vl_play 保持不变。",
                "Nothing of this copy was left on the card; a vl_play already there was left as it was.");
}

QString cardCopyLeftBehind(const QString &folder)
{
    return pick("已复制的部分仍在卡上：%1（卡可能已被拔出）。下次复制到此卡时会先删除它。原有的 vl_play "
                "保持不变。",
                "What was copied is still on the card as %1 (the card may have been removed); the next copy "
                "to "
                "this card removes it. A vl_play already there was left as it was.")
        .arg(folder);
}

} // namespace Str
