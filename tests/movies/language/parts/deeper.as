var fromDeeper = "deeper";
