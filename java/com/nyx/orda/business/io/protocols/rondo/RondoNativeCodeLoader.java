package com.nyx.orda.business.io.protocols.rondo;

/**
 * The seven native methods of librondo.so. Each answers true on success;
 * the library writes its reports to standard output.
 */
public class RondoNativeCodeLoader {
    static {
        System.loadLibrary("rondo");
    }

    public native boolean RondoOpenConnection(String server);

    public native boolean RondoOpenProject(String server, String project);

    public native boolean RondoGetContents(String server, String project, String storeClass, Object resultSink);

    public native boolean RondoGetDataInfo(Object dataDescriptor, Object infoSink);

    public native boolean RondoLoadAttributeI(Object dataDescriptor, String attributeName, int[] values);

    public native boolean RondoLoadAttributeF(Object dataDescriptor, String attributeName, float[] values,
                                              int first, int count);

    public native boolean RondoLoadAttributeFromTabindexF(Object dataDescriptor, String attributeName,
                                                          int[] indices, int nIndices, float[] values);
}
