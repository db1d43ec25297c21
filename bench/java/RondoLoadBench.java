package com.nyx.orda.business.io.protocols.rondo;

/**
 * The user's path timed: the Java host loads every trace of a data set into
 * float arrays by ranges of RANGE traces, and one header word of every
 * trace into an int array, through the data server. Prints the best of
 * REPEATS runs of each, in milliseconds, and the first header load after
 * the store's open; later header loads are answered from what the layers
 * below keep.
 *
 *   RondoLoadBench SERVER PROJECT DATA TRACES RANGE HEADER REPEATS
 */
public class RondoLoadBench {
    public static void main(String[] args) {
        String server = args[0];
        String project = args[1];
        RondoDataDescriptor data = new RondoDataDescriptor(server, project, args[2], "RONDO");
        int traces = Integer.parseInt(args[3]);
        int range = Integer.parseInt(args[4]);
        String header = args[5];
        int repeats = Integer.parseInt(args[6]);
        RondoNativeCodeLoader loader = new RondoNativeCodeLoader();
        if (!loader.RondoOpenConnection(server) || !loader.RondoOpenProject(server, project)) {
            System.exit(1);
        }
        int samples = 0;
        float[] probe = new float[1 << 16];
        if (loader.RondoLoadAttributeF(data, "TRACE", probe, 0, 1)) {
            for (samples = probe.length; samples > 0 && probe[samples - 1] == 0.0f; samples--) {
            }
        }
        int[] words = new int[traces];
        // The store is open (the probe above); the first header load reads
        // the word from every trace header of the file.
        long opening = System.nanoTime();
        if (!loader.RondoLoadAttributeI(data, header, words)) {
            System.exit(1);
        }
        opening = System.nanoTime() - opening;
        samples = Integer.parseInt(System.getProperty("samples", Integer.toString(samples)));
        float[] values = new float[samples * range];
        long bestTraces = Long.MAX_VALUE;
        long bestHeader = Long.MAX_VALUE;
        double check = 0;
        for (int r = 0; r < repeats; r++) {
            long start = System.nanoTime();
            for (int first = 0; first < traces; first += range) {
                if (!loader.RondoLoadAttributeF(data, "TRACE", values, first, range)) {
                    System.exit(1);
                }
                check += values[0];
            }
            bestTraces = Math.min(bestTraces, System.nanoTime() - start);
            start = System.nanoTime();
            if (!loader.RondoLoadAttributeI(data, header, words)) {
                System.exit(1);
            }
            bestHeader = Math.min(bestHeader, System.nanoTime() - start);
            check += words[traces - 1];
        }
        System.out.printf("JavaTraces %.1f ms%nJavaHeaderWordFirst %.1f ms%nJavaHeaderWord %.1f ms%n(check %.1f)%n",
                          bestTraces / 1e6, opening / 1e6, bestHeader / 1e6, check);
    }
}
