package com.nyx.orda.business.io.protocols.rondo;

import java.util.zip.CRC32;

/**
 * The mapping application's use of data, for scripts: connects, opens a
 * project, asks what data sets hold and loads attributes into arrays, then
 * prints for each load the count, the sum and a CRC-32 of the array's
 * values (as big-endian IEEE or two's complement words), so that a script
 * can compare whole loads in one line.
 *
 * Commands and their arguments:
 *   connect SERVER
 *   project SERVER PROJECT
 *   datainfo SERVER PROJECT DATA
 *   sumi SERVER PROJECT DATA ATTRIBUTE SIZE
 *   sumf SERVER PROJECT DATA ATTRIBUTE FIRST COUNT SIZE
 *   sumtab SERVER PROJECT DATA ATTRIBUTE SIZE INDEX[,INDEX...]
 *   contents SERVER PROJECT CLASS        (CLASS "-" for all; prints the names)
 *   bitsi SERVER PROJECT DATA ATTRIBUTE SIZE
 *   bitsf SERVER PROJECT DATA ATTRIBUTE FIRST COUNT SIZE
 *   run SHELL-COMMAND                    (between calls, as a test needs)
 * SIZE is the length of the array handed over; its unused end stays 0.
 * The bits commands print every value of the array: integers in decimal,
 * floats as the hexadecimal of their IEEE bits, so that a script can
 * compare them with what another reader of the same file gives.
 * The exit code is the number of calls that answered false.
 */
public class RondoDataHost {
    private static RondoDataDescriptor data(String[] args, int i) {
        return new RondoDataDescriptor(args[i + 1], args[i + 2], args[i + 3], "RONDO");
    }

    private static String checksum(int[] values) {
        CRC32 crc = new CRC32();
        long sum = 0;
        for (int v : values) {
            sum += v;
            crc.update(new byte[] {(byte) (v >>> 24), (byte) (v >>> 16), (byte) (v >>> 8), (byte) v});
        }
        return "n=" + values.length + " sum=" + sum + " crc=" + String.format("%08x", crc.getValue());
    }

    private static String checksum(float[] values) {
        CRC32 crc = new CRC32();
        double sum = 0;
        for (float f : values) {
            sum += f;
            int v = Float.floatToRawIntBits(f);
            crc.update(new byte[] {(byte) (v >>> 24), (byte) (v >>> 16), (byte) (v >>> 8), (byte) v});
        }
        return "n=" + values.length + " sum=" + sum + " crc=" + String.format("%08x", crc.getValue());
    }

    private static String bits(int[] values) {
        StringBuilder b = new StringBuilder("n=" + values.length);
        for (int v : values) {
            b.append(' ').append(v);
        }
        return b.toString();
    }

    private static String bits(float[] values) {
        StringBuilder b = new StringBuilder("n=" + values.length);
        for (float f : values) {
            b.append(' ').append(String.format("%08x", Float.floatToRawIntBits(f)));
        }
        return b.toString();
    }

    public static void main(String[] args) {
        RondoNativeCodeLoader loader = new RondoNativeCodeLoader();
        int failures = 0;
        int i = 0;
        while (i < args.length) {
            String command = args[i];
            boolean result;
            String call;
            switch (command) {
                case "connect":
                    call = "RondoOpenConnection(" + args[i + 1] + ")";
                    result = loader.RondoOpenConnection(args[i + 1]);
                    i += 2;
                    break;
                case "project":
                    call = "RondoOpenProject(" + args[i + 1] + ", " + args[i + 2] + ")";
                    result = loader.RondoOpenProject(args[i + 1], args[i + 2]);
                    i += 3;
                    break;
                case "datainfo":
                    call = "RondoGetDataInfo(" + args[i + 3] + ")";
                    result = loader.RondoGetDataInfo(data(args, i), new RondoInfoSink());
                    i += 4;
                    break;
                case "sumi": {
                    int[] values = new int[Integer.parseInt(args[i + 5])];
                    result = loader.RondoLoadAttributeI(data(args, i), args[i + 4], values);
                    call = "RondoLoadAttributeI(" + args[i + 3] + ", " + args[i + 4] + ") " + checksum(values);
                    i += 6;
                    break;
                }
                case "sumf": {
                    int first = Integer.parseInt(args[i + 5]);
                    int count = Integer.parseInt(args[i + 6]);
                    float[] values = new float[Integer.parseInt(args[i + 7])];
                    result = loader.RondoLoadAttributeF(data(args, i), args[i + 4], values, first, count);
                    call = "RondoLoadAttributeF(" + args[i + 3] + ", " + args[i + 4] + ", " + first + ", " + count
                           + ") " + checksum(values);
                    i += 8;
                    break;
                }
                case "sumtab": {
                    float[] values = new float[Integer.parseInt(args[i + 5])];
                    String[] listed = args[i + 6].split(",");
                    int[] indices = new int[listed.length];
                    for (int k = 0; k < listed.length; k++) {
                        indices[k] = Integer.parseInt(listed[k]);
                    }
                    result = loader.RondoLoadAttributeFromTabindexF(data(args, i), args[i + 4], indices,
                                                                    indices.length, values);
                    call = "RondoLoadAttributeFromTabindexF(" + args[i + 3] + ", " + args[i + 4] + ", "
                           + args[i + 6] + ") " + checksum(values);
                    i += 7;
                    break;
                }
                case "contents": {
                    String storeClass = args[i + 3].equals("-") ? "" : args[i + 3];
                    RondoResultSink sink = new RondoResultSink();
                    result = loader.RondoGetContents(args[i + 1], args[i + 2], storeClass, sink);
                    call = "RondoGetContents(" + args[i + 2] + ", " + args[i + 3] + ") " + sink.getNames();
                    i += 4;
                    break;
                }
                case "bitsi": {
                    int[] values = new int[Integer.parseInt(args[i + 5])];
                    result = loader.RondoLoadAttributeI(data(args, i), args[i + 4], values);
                    call = "RondoLoadAttributeI(" + args[i + 3] + ", " + args[i + 4] + ") " + bits(values);
                    i += 6;
                    break;
                }
                case "bitsf": {
                    int first = Integer.parseInt(args[i + 5]);
                    int count = Integer.parseInt(args[i + 6]);
                    float[] values = new float[Integer.parseInt(args[i + 7])];
                    result = loader.RondoLoadAttributeF(data(args, i), args[i + 4], values, first, count);
                    call = "RondoLoadAttributeF(" + args[i + 3] + ", " + args[i + 4] + ", " + first + ", " + count
                           + ") " + bits(values);
                    i += 8;
                    break;
                }
                case "run": {
                    try {
                        Process p = new ProcessBuilder("sh", "-c", args[i + 1]).inheritIO().start();
                        result = p.waitFor() == 0;
                    } catch (java.io.IOException | InterruptedException e) {
                        result = false;
                    }
                    call = "run";
                    i += 2;
                    break;
                }
                default:
                    throw new IllegalArgumentException("unknown command " + command);
            }
            RondoHost.say(call + " = " + result);
            if (!result) {
                failures++;
            }
        }
        System.exit(failures);
    }
}
