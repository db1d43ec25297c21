package com.nyx.orda.business.io.protocols.rondo;

/**
 * A small stand-in for the mapping application: runs the native methods in
 * the order given on the command line and prints each result, so that a
 * script can compare the whole standard output (the library's reports and
 * these lines, in the order they happened).
 *
 * Commands and their arguments:
 *   connect SERVER
 *   project SERVER PROJECT
 *   contents SERVER PROJECT CLASS
 *   contents-without-append SERVER PROJECT CLASS
 *   datainfo SERVER PROJECT DATA
 *   loadi SERVER PROJECT DATA ATTRIBUTE
 *   loadf SERVER PROJECT DATA ATTRIBUTE FIRST COUNT
 *   loadtab SERVER PROJECT DATA ATTRIBUTE
 * An argument "-" stands for the empty string. The exit code is the number
 * of calls that answered false.
 */
public class RondoHost {
    /** A sink without the method the library looks for. */
    public static class SinkWithoutAppend {
        public void add(String name) {
            say("add(" + name + ")");
        }
    }

    static void say(String line) {
        System.out.println(line);
        System.out.flush();
    }

    private static String arg(String[] args, int i) {
        if (i >= args.length) {
            throw new IllegalArgumentException("missing argument " + i + " for " + args[0]);
        }
        return args[i].equals("-") ? "" : args[i];
    }

    private static String show(String s) {
        return "\"" + s + "\"";
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
                case "connect": {
                    String server = arg(args, i + 1);
                    call = "RondoOpenConnection(" + show(server) + ")";
                    result = loader.RondoOpenConnection(server);
                    i += 2;
                    break;
                }
                case "project": {
                    String server = arg(args, i + 1);
                    String project = arg(args, i + 2);
                    call = "RondoOpenProject(" + show(server) + ", " + show(project) + ")";
                    result = loader.RondoOpenProject(server, project);
                    i += 3;
                    break;
                }
                case "contents":
                case "contents-without-append": {
                    String server = arg(args, i + 1);
                    String project = arg(args, i + 2);
                    String storeClass = arg(args, i + 3);
                    Object sink = command.equals("contents") ? new RondoResultSink() : new SinkWithoutAppend();
                    call = "RondoGetContents(" + show(server) + ", " + show(project) + ", " + show(storeClass) + ")";
                    result = loader.RondoGetContents(server, project, storeClass, sink);
                    if (sink instanceof RondoResultSink) {
                        call += " stores=" + ((RondoResultSink) sink).getNames().size();
                    }
                    i += 4;
                    break;
                }
                case "datainfo": {
                    RondoDataDescriptor d = new RondoDataDescriptor(arg(args, i + 1), arg(args, i + 2),
                                                                    arg(args, i + 3), "RONDO");
                    call = "RondoGetDataInfo(" + show(d.getDataName()) + ")";
                    result = loader.RondoGetDataInfo(d, new RondoInfoSink());
                    i += 4;
                    break;
                }
                case "loadi": {
                    RondoDataDescriptor d = new RondoDataDescriptor(arg(args, i + 1), arg(args, i + 2),
                                                                    arg(args, i + 3), "RONDO");
                    String attribute = arg(args, i + 4);
                    int[] values = new int[16];
                    call = "RondoLoadAttributeI(" + show(d.getDataName()) + ", " + show(attribute) + ")";
                    result = loader.RondoLoadAttributeI(d, attribute, values);
                    i += 5;
                    break;
                }
                case "loadf": {
                    RondoDataDescriptor d = new RondoDataDescriptor(arg(args, i + 1), arg(args, i + 2),
                                                                    arg(args, i + 3), "RONDO");
                    String attribute = arg(args, i + 4);
                    int first = Integer.parseInt(arg(args, i + 5));
                    int count = Integer.parseInt(arg(args, i + 6));
                    float[] values = new float[16];
                    call = "RondoLoadAttributeF(" + show(d.getDataName()) + ", " + show(attribute) + ", "
                           + first + ", " + count + ")";
                    result = loader.RondoLoadAttributeF(d, attribute, values, first, count);
                    i += 7;
                    break;
                }
                case "loadtab": {
                    RondoDataDescriptor d = new RondoDataDescriptor(arg(args, i + 1), arg(args, i + 2),
                                                                    arg(args, i + 3), "RONDO");
                    String attribute = arg(args, i + 4);
                    int[] indices = {0, 1};
                    float[] values = new float[16];
                    call = "RondoLoadAttributeFromTabindexF(" + show(d.getDataName()) + ", " + show(attribute)
                           + ")";
                    result = loader.RondoLoadAttributeFromTabindexF(d, attribute, indices, indices.length, values);
                    i += 5;
                    break;
                }
                default:
                    throw new IllegalArgumentException("unknown command " + command);
            }
            say(call + " = " + result);
            if (!result) {
                failures++;
            }
        }
        System.exit(failures);
    }
}
